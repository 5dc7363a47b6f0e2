# Turns the plain comments of a header into comments that Doxygen reads: the comment of the file, comments before a declaration,
# and comments after a declaration on the same line. Headings of sections and comments after a directive stay plain.
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
