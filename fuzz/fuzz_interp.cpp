// Interpretation files and their readable source. The bytes are opened as
// a binary interpretation file and every table is read with selectors at
// and beyond the ends of their ranges; the texts found go through the RTF
// escaping. The same bytes are parsed as a source; a source that parses is
// built into a file whose every entry must read back exactly.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"
#include "groups/interpretation.h"
#include "groups/interpretation_source.h"
#include "groups/rtf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string bytes = vintar::fuzz::AsString(data, size);
  vintar::RtfWriter writer;
  writer.SetDefaultStyles();

  const std::string path = fuzz.Work("input.int");
  vintar::fuzz::WriteBytes(path, bytes);
  vintar::InterpretationFile file;
  vintar::OpenInterpretation(session, path, file);
  constexpr int kA[] = {-32768, -1, 0, 1, 2, 12, 25, 26, 27, 36, 37, 100, 32767};
  constexpr int kB[] = {-1, 0, 1, 2, 12, 13};
  constexpr int kC[] = {0, 1, 26, 36, 37};
  std::string text;
  for (int table = 0; table <= 21; ++table)
    for (int a : kA)
      for (int b : kB)
        for (int c : kC)
          if (vintar::ReadInterpretation(file, table, a, b, c, text) && b == 2 && c == 0)
            (void)vintar::RtfStyled(writer, vintar::RtfLines(writer, vintar::RtfEscape(text)), 5);

  vintar::InterpretationSource source;
  std::string error;
  if (vintar::ParseInterpretationSource(bytes, fuzz.Work(""), source, error, "input.txt")) {
    vintar::fuzz::WriteBytes(path, vintar::BuildInterpretationFile(source));
    if (!vintar::OpenInterpretation(session, path, file)) __builtin_trap();
    for (const vintar::InterpretationEntry& e : source.Entries)
      if (!vintar::ReadInterpretation(file, e.Table, e.A, e.B, e.C, text) || text != e.Text) __builtin_trap();
  }
  return 0;
}
