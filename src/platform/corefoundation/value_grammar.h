// How the property-list document type has numbers and dates written.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_VALUE_GRAMMAR_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_VALUE_GRAMMAR_H_

#include <string_view>

namespace catalogcore::cf {

// The white space of XML: space, tab, carriage return, line feed.
bool IsSpace(std::string_view text);
std::string_view TrimSpace(std::string_view text);

bool IsInteger(std::string_view text);

// With an exponent of either case, and with the infinities and nan, as writers of property lists have them.
bool IsReal(std::string_view text);

// From the year alone to the second, always with the Z; a date that the calendar has, a leap second included.
bool IsDate(std::string_view text);

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_VALUE_GRAMMAR_H_
