// make_interpretation SOURCE.txt OUT.int
//
// Compiles a readable interpretation source (groups/interpretation_source.h
// describes the form) into the binary file that the group report reads.
// SOURCE.txt is read together with SOURCE_pairs.txt when that lies beside
// it; an @pairs file is looked for in the folder of SOURCE.txt. The output
// is replaced only when the whole file is written.
#include <cstdio>
#include <string>

#include "core/file_io.h"
#include "core/session.h"
#include "core/text.h"
#include "groups/interpretation_source.h"

int main(int argc, char** argv) {
  using namespace vintar;
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_interpretation SOURCE.txt OUT.int\n");
    return 2;
  }
  const std::string source = argv[1], target = argv[2];
  std::string text, error;
  InterpretationSource parsed;
  if (!ReadInterpretationSourceFile(source, text, error) ||
      !ParseInterpretationSource(text, PathFolder(source), parsed, error, PathFileName(source))) {
    std::fprintf(stderr, "make_interpretation: %s\n", DisplayText(error).c_str());
    return 1;
  }
  if (!WriteFileAtomically(target, BuildInterpretationFile(parsed), error)) {
    std::fprintf(stderr, "make_interpretation: %s\n", DisplayText(error).c_str());
    return 1;
  }
  return 0;
}
