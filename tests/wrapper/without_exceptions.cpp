// The C++ layer is the one header included, and exceptions are off: that it compiles, without a warning, is half the test.
#include <catalogcore.hpp>

int main() {
  catalogcore::Result<catalogcore::Catalog> opened = catalogcore::Catalog::Open();
  if (!opened) return 1;
  const catalogcore::Result<void> added = opened->AddImage("/a/b", catalogcore::preset::kOther);
  const auto again = added.and_then([&opened] { return opened->AddImage("/a/b", catalogcore::preset::kOther); });
  if (again.error() != catalogcore::Status::kImageExists) return 1;
  for (const catalogcore::Image& image : *opened->Images()) {
    if (image.path != "/a/b") return 1;
  }
  return opened->Indexes() ? 0 : 1;
}
