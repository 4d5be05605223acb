# The C++ of a Markdown file, with the lines it stands in.
/^```cpp$/ { printf "#line %d \"%s\"\n", NR + 1, FILENAME; inside = 1; next }
/^```$/ { inside = 0 }
inside
