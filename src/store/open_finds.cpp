#include "store/open_finds.h"

#include <new>

namespace catalogcore {

namespace {

std::uint64_t NextCatalogue() {
  static std::atomic<std::uint64_t> latest{0};
  return ++latest;
}

}  // namespace

OpenFinds::OpenFinds() : catalogue(NextCatalogue()) {}

bool OpenFinds::Open(SearchHandle& handle) {
  if (!last || last->nodes.head || last->cells.head) {
    auto* const span = new (std::nothrow) FindSpan;
    if (!span) return false;
    (last ? last->next : first) = span;
    last = span;
  }
  last->openFinds.fetch_add(1, std::memory_order_relaxed);
  handle.catalogue = catalogue;
  handle.span = last;
  return true;
}

void OpenFinds::Close(const SearchHandle& handle) const {
  // The span may be deleted right after this. Release order: the sweeping thread must see every earlier use of the
  // handle.
  if (IsOpen(handle)) handle.span->openFinds.fetch_sub(1, std::memory_order_release);
}

void OpenFinds::Keep(CIDXNode* node) {
  if (!last) {
    delete node;
    return;
  }
  node->info->removed = true;
  last->nodes.Append(node);
}

void OpenFinds::Keep(CIDXCell* cell) {
  if (!last) {
    delete cell;
    return;
  }
  last->cells.Append(cell);
}

void OpenFinds::Clear() {
  while (first) DeleteOldest();
  catalogue = NextCatalogue();
}

void OpenFinds::DeleteOldest() {
  const auto deleteFirst = [](auto& chain) {
    auto* const entry = chain.head;
    if (!entry) return false;
    chain.Remove(entry);
    delete entry;
    return true;
  };
  if (deleteFirst(first->nodes) || deleteFirst(first->cells)) return;
  FindSpan* const span = first;
  first = span->next;
  if (!first) last = nullptr;
  delete span;
}

}  // namespace catalogcore
