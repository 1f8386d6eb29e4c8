# cmake -DINPUT=<file> -DOUTPUT=<file.cpp> -DNAMESPACE=<ns> -DFUNCTION=<name> -P EmbedText.cmake
# Writes a C++ source whose function returns the input file's text. The text is cut into
# raw-string pieces well under the compilers' literal limits.
file(READ "${INPUT}" text)
string(LENGTH "${text}" len)
set(out "// Generated from ${INPUT}; do not edit.\n#include <string>\n\nnamespace ${NAMESPACE} {\n\nconst std::string& ${FUNCTION}() {\n    static const char* const pieces[] = {\n")
set(pos 0)
set(step 30000)
while(pos LESS len)
  string(SUBSTRING "${text}" ${pos} ${step} piece)
  string(APPEND out "        R\"tq_embed(${piece})tq_embed\",\n")
  math(EXPR pos "${pos} + ${step}")
endwhile()
string(APPEND out "        nullptr};\n    static const std::string whole = [] {\n        std::string s;\n        for (const char* const* p = pieces; *p; ++p) s += *p;\n        return s;\n    }();\n    return whole;\n}\n\n}  // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}.tmp" "${out}")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
