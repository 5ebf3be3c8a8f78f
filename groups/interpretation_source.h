// The readable source of an interpretation file and the builder of the
// binary file from it, shared by the make_interpretation tool and the tests.
//
// Source form (single-byte Latin-1, LF or CR LF line ends; a source that
// is well-formed UTF-8 is taken as UTF-8 and converted, and a character
// outside Latin-1 is then an error):
//   # comment                   a '#' in the first column, anywhere
//   @version 200                before the first entry (default 200)
//   @pairdepth 1                before the first entry (default 1)
//   @pairs general.txt          pair texts not given here come from there
//   [introduction]              table 3
//   [text N]                    table 4, a = N
//   [harmonic N]                table 5, a = N
//   [house N]                   table 13, a = N (1..12), b = 2
//   [sign NAME]                 table 14, a = sign (Aries 1 .. Pisces 12), b = 2
//   [point NAME]                table 15, a = interpretation index of NAME
//   [pair NAME1 NAME2]          table 19, a = index 1, b = 1, c = index 2
//   [table T A B C]             any address (B and C default to 0)
// The body of an entry is every line up to the next head: blank lines at
// either end are dropped, the lines of one paragraph are joined with a
// blank, and paragraphs are joined with CR LF. Heads and names ignore case.
//
// A source file NAME.txt is read together with NAME_pairs.txt when that
// file lies beside it, as if the two were one file (so the long list of
// pair texts can live apart); this holds for the tool's input and for the
// file named by @pairs.
//
// The binary layout is that read by groups/interpretation.h; checked by
// tests/groups through a full round trip.
#pragma once

#include <string>
#include <vector>

namespace vintar {

inline constexpr int kMaxInterpretationText = 32767;

struct InterpretationEntry {
  int Table = 0, A = 0, B = 0, C = 0;
  std::string Text;
};

struct InterpretationSource {
  int Version = 200;
  int PairDepth = 1;
  std::vector<InterpretationEntry> Entries;
};

// Parses the readable source; `includeDir` is the folder of the file named
// by @pairs. False with "name:line: what" in `error` on the first fault.
bool ParseInterpretationSource(const std::string& text, const std::string& includeDir, InterpretationSource& out,
                               std::string& error, const std::string& name = "");
// Reads the source file at `path` together with its `_pairs` companion (see
// above); false with a message in `error` when it cannot be read.
bool ReadInterpretationSourceFile(const std::string& path, std::string& text, std::string& error);
// The binary file: the header, each table sized to its largest entry used
// (the pair table in the square form of version 200 or the triangle below
// it), then the texts.
std::string BuildInterpretationFile(const InterpretationSource& source);

}  // namespace vintar
