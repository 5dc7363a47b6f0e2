// Beginning and end of the store.
//
// Every image is in a bucket, and every cell is in a bucket or in `movedCells`. Some cells and images are in no tree,
// after a move of cells or if a root could not be allocated. The destructor therefore goes through the buckets and
// `movedCells`, not through the trees.
#include "store/index_data.h"

#include "catalogcore.h"

namespace catalogcore {

CIndexData::CIndexData() { InitializeCriticalSectionAPI(&criticalRegion); }

CIndexData::~CIndexData() {
  DeleteCriticalSectionAPI(&criticalRegion);
  Uninitialize();
}

std::uint32_t CIndexData::Initialize() {
  Uninitialize();
  CIDXString rootKey;
  if (rootKey.CopyString(".") < 0) return StoreOk;
  for (std::int32_t tree = 0; tree < kTreeCount; ++tree) {
    root[tree] = CreateCell(tree, nullptr, rootKey, rootKey, IDXATTR_NOMOVE | IDXATTR_NOREMOVE | IDXATTR_NORENAME);
  }
  return StoreOk;
}

std::uint32_t CIndexData::Uninitialize() {
  openFinds.Clear();
  DeleteAllNodes();
  for (std::int32_t tree = 0; tree < kTreeCount; ++tree) DeleteAllCells(tree);
  return StoreOk;
}

void CIndexData::DeleteAllNodes() {
  for (HashChain<CIDXNode>& chain : nodeHash) {
    chain.Clear([](CIDXNode* node) { delete node; });
  }
  nodeTable.Clear();
}

void CIndexData::DeleteAllCells(std::int32_t tree) {
  const auto deleteCell = [](CIDXCell* cell) {
    DeleteSkipList(cell);
    delete cell;
  };
  for (HashChain<CIDXCell>& chain : cellHash[tree]) chain.Clear(deleteCell);
  cellTable[tree].Clear();
  movedCells[tree].Clear(deleteCell);
  root[tree] = nullptr;
  recentFolder = nullptr;
}

}  // namespace catalogcore
