#include "store/entries.h"

#include <cstring>
#include <new>

namespace catalogcore {

EmbeddedKey::EmbeddedKey(char* block, const char* text, std::size_t size) {
  std::memcpy(block, text, size);
  std::memset(block + size, 0, BlockBytes(size) - size);
  buffer = block;
  length = static_cast<std::int32_t>(size);
  capacity = length + 1;
}

CIDXNode* CIDXNode::Create(const char* text, std::size_t size) {
  void* const block = std::malloc(sizeof(CIDXNode) + EmbeddedKey::BlockBytes(size));
  return block ? new (block) CIDXNode(text, size) : nullptr;
}

CIDXCell::~CIDXCell() { delete info; }

}  // namespace catalogcore
