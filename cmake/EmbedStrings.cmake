# Turns the strings table into a C++ source holding it as one raw string literal.
file(READ "${INPUT}" content)
set(delimiter "tbstrings")
file(WRITE "${OUTPUT}"
  "// Generated from resources/strings/en.json. Do not edit.\n"
  "namespace tb {\n"
  "extern const char* const kEnglishStringsJSON;\n"
  "const char* const kEnglishStringsJSON = R\"${delimiter}(${content})${delimiter}\";\n"
  "}  // namespace tb\n")
