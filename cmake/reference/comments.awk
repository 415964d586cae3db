# Doxygen input filter: turns the headers' plain comments into documentation comments. The first
# comment of a file describes the file, `// --- Title ---` in a class starts a group of members, and a
# comment in front of several declarations is repeated for each of them.

function end_group() {
  if (in_group) print "///@}"
  in_group = 0
}

FNR == 1 && /^\/\// { print "/// @file"; in_file_comment = 1 }
/^ *\/\// {
  gsub(/</, "\\&lt;")
  gsub(/"&lt;/, "\"<")  # between quotes Doxygen looks for no tags
  sub(/\/\/   +/, "// <br>")  # indented lines stay lines
}
in_file_comment && /^\/\// { print "/" $0; next }
{ in_file_comment = 0 }

/^\/\/ -+ .* -+$/ { next }
/^ +\/\/ -+ .* -+$/ {
  end_group()
  gsub(/^ *\/\/ -+ | -+$|`/, "")
  print "/// @name " $0 "\n///@{"
  in_group = 1
  next
}

/^ *\/\// {
  sub(/\/\//, "///")
  comment = comment $0 "\n"
  next
}

/^ *$/ { comment = "" }
/^};/ { end_group() }

{
  if (!in_declaration && !/^ *(#|}|$)/) printf "%s", comment
  in_declaration = !/[;:{}>]( *\/\/.*)?$/ && !/^ *(#|$)/
  if (/{$/) comment = ""
  sub(/;  +\/\/ /, ";  ///< ")
  print
}
