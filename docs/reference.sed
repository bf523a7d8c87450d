# What the reference shows in another way than the repository: a page begins with its contents;
# pictures lie beside the pages; links to source files and within a page are texts; colours aren't
# links, which Doxygen takes them for.
1s/^(# .*)$/\1\
\
[TOC]/
s/\]\(pictures\//](/g
s/\[([^]]*)\]\((\.\.\/|#)[^)]*\)/\1/g
s/#([0-9a-f]{6})/\\#\1/g
