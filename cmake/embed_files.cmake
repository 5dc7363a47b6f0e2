# Writes OUTPUT, a C++ source that defines FUNCTION, which HEADER declares in NAMESPACE. The function returns a table
# with the name and content of each of FILES, in their order. The names are relative to FOLDER.
set(arrays "")
set(rows "")
set(number 0)
foreach(name IN LISTS FILES)
  file(READ ${FOLDER}/${name} bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND arrays "constexpr char kFile${number}[] = {${bytes}};\n")
  string(APPEND rows "    {\"${name}\", {kFile${number}, sizeof kFile${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "#include \"${HEADER}\"

namespace {

${arrays}
constexpr ${NAMESPACE}::EmbeddedFile kFiles[] = {
${rows}};

}  // namespace

std::span<const ${NAMESPACE}::EmbeddedFile> ${NAMESPACE}::${FUNCTION}() { return kFiles; }
")
