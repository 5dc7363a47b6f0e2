// Compiled without exceptions, and with catalogcore.hpp as its only header.
#include <catalogcore.hpp>

int main() {
  catalogcore::Result<catalogcore::Catalog> opened = catalogcore::Catalog::Open();
  if (!opened || !opened->AddImage("/a/b", catalogcore::preset::kOther)) return 1;
  for (const catalogcore::Image& image : *opened->Images()) return image.path == "/a/b" ? 0 : 1;
}
