# Makes the comments of a header those that Doxygen reads: of the file, ahead of a declaration, or behind one on its line.
# Headings of sections stay plain, and so does what stands behind a directive.
1s|^/\*$|/** @file|
1s|^//\([^/].*\)|///\1 @file|
\|^ */[*/] ----|b
/^#/b
\|^/\*$|{
N
/ ---- /!s|^/\*|/**|
}
s|^\( *\)/\* |\1/** |
s|^\( *[^ /].*[^ ]  *\)/\* \(.*\*/\)$|\1/**< \2|
s|^\( *\)//\([^/]\)|\1///\2|
s|^\( *[^ /].*[^ ]  *\)// |\1///< |
