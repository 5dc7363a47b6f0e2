// Property lists for several tests.
#ifndef CATALOGCORE_TESTS_PLATFORM_PROPERTY_LIST_SAMPLES_H_
#define CATALOGCORE_TESTS_PLATFORM_PROPERTY_LIST_SAMPLES_H_

namespace catalogcore {

// Every kind of value, nested, laid out as it is written.
constexpr const char* kEveryKind =
    "<dict>\n"
    "\t<key>z text</key>\n\t<string> \n\ttab, line feed, &#13; &amp;lt; ]]&gt; \xC3\xA9\xE4\xB8\xAD\xF0\x9F\x93\xB7 "
    "</string>\n"
    "\t<key>data</key>\n\t<data>\n"
    "\t//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7/\n"
    "\t/iE=\n\t</data>\n"
    "\t<key>none</key>\n\t<data>\n\t</data>\n"
    "\t<key>integer</key>\n\t<integer>-9223372036854775809</integer>\n"
    "\t<key>real</key>\n\t<real>+1.50e-3</real>\n"
    "\t<key>date</key>\n\t<date>2004-02-29T23:59:60Z</date>\n"
    "\t<key>true</key>\n\t<true/>\n"
    "\t<key>a &lt;&amp;&gt;</key>\n\t<array>\n"
    "\t\t<false/>\n\t\t<array>\n\t\t\t<data>\n\t\t\tAA==\n\t\t\t</data>\n\t\t\t<dict/>\n\t\t</array>\n\t\t<array/>\n"
    "\t</array>\n"
    "\t<key></key>\n\t<dict>\n\t\t<key>inner</key>\n\t\t<string></string>\n\t</dict>\n"
    "</dict>\n";

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_PLATFORM_PROPERTY_LIST_SAMPLES_H_
