#include "api/idx_item.h"

#include "api/index_number.h"
#include "base/string_conversion.h"

namespace catalogcore {

namespace {

bool IsMarked(const IDXITEM* item, std::uint32_t field) { return (item->mask & field) != 0; }

// The variable of a string field; null when the field is absent.
IDXSTR StringField(const IDXITEM* item, std::uint32_t field, IDXSTR variable) {
  return IsMarked(item, field) ? variable : nullptr;
}

IDXSTATUS ReadString(IDXSTR variable, CIDXString& text) {
  if (!variable) return IDXERR_PARAM;
  return static_cast<IDXSTATUS>(CopyIDXSTRtoCIDXString(text, variable));
}

IDXSTATUS WriteString(IDXSTR variable, const CIDXString& text) {
  if (!variable) return IDXERR_PARAM;
  return static_cast<IDXSTATUS>(CopyCIDXStringtoIDXSTR(variable, text));
}

}  // namespace

IDXSTATUS GetIDXName(const IDXITEM* item, CIDXString& name) {
  return ReadString(StringField(item, IDXMASK_NAME, item->name), name);
}

IDXSTATUS GetIDXPath(const IDXITEM* item, CIDXString& path) {
  const IDXSTATUS status = ReadString(StringField(item, IDXMASK_PATH, item->path), path);
  if (status != IDX_OK) return status;
  return path.ConvertASCIIToUTF8() ? IDX_OK : IDXERR_FAILED;
}

IDXSTATUS GetIDXIndex(const IDXITEM* item, CIDXString& key) {
  if (!IsMarked(item, IDXMASK_INDEX)) return IDXERR_PARAM;
  if (item->index != kRootNumber && !IsIndexNumber(item->index)) return IDXERR_PARAM;
  return ConvertINTtoPath(key, item->index, kIndexDigits) < 0 ? IDXERR_MEMORY : IDX_OK;
}

IDXSTATUS GetIDXAttribute(const IDXITEM* item, unsigned char* attribute) {
  if (!IsMarked(item, IDXMASK_ATTRIBUTE)) return IDXERR_PARAM;
  *attribute = item->attribute;
  return IDX_OK;
}

int GetIDXOperation(const IDXITEM* item, unsigned int bits) { return (item->operation & bits) != 0 ? 1 : 0; }

int GetIDXState(const IDXITEM* item, unsigned int bits) { return (item->state & bits) != 0 ? 1 : 0; }

IDXSTATUS SetIDXName(IDXITEM* item, const CIDXString& name) {
  return WriteString(StringField(item, IDXMASK_NAME, item->name), name);
}

IDXSTATUS SetIDXPath(IDXITEM* item, const CIDXString& path) {
  return WriteString(StringField(item, IDXMASK_PATH, item->path), path);
}

IDXSTATUS SetIDXIndex(IDXITEM* item, const CIDXString& key) {
  if (!IsMarked(item, IDXMASK_INDEX)) return IDXERR_PARAM;
  int number = 0;
  ConvertPathtoINT(number, key, kIndexLevels, kIndexDigits);
  item->index = number;
  return IDX_OK;
}

IDXSTATUS SetIDXAttribute(IDXITEM* item, unsigned char attribute) {
  if (!IsMarked(item, IDXMASK_ATTRIBUTE)) return IDXERR_PARAM;
  item->attribute = attribute;
  return IDX_OK;
}

}  // namespace catalogcore
