#include "groups/interpretation.h"

#include <utility>

#include "core/file_io.h"
#include "core/messages.h"
#include "core/text.h"

namespace vintar {
namespace {

int16_t Int16At(const std::string& bytes, size_t at) {
  return static_cast<int16_t>(static_cast<uint8_t>(bytes[at]) | static_cast<uint8_t>(bytes[at + 1]) << 8);
}

int32_t Int32At(const std::string& bytes, size_t at) {
  uint32_t v = 0;
  for (int k = 3; k >= 0; --k) v = v << 8 | static_cast<uint8_t>(bytes[at + k]);
  return static_cast<int32_t>(v);
}

}  // namespace

// Computed in 64 bits, so that no selectors overflow.
bool TableEntryNumber(const InterpretationHeader& h, int table, int64_t a, int64_t b, int64_t c, int64_t& entry) {
  const int64_t n = InterpretationPointCount(h);
  switch (table) {
    case 1: case 2: case 3: case 20:
      entry = 0;
      return true;
    case 4: case 5: case 12: case 15:
      if (table == 15 && a > n) return false;
      entry = a - 1;
      return true;
    case 6: case 7: case 8: case 9: case 10: case 11: case 13: case 14:
      entry = (a - 1) * 3 + b;
      return true;
    case 16: case 17: case 18:
      if (table != 18 && a > n) return false;
      entry = (a - 1) * 12 + (b - 1);
      return true;
    case 19: {
      if (c < a) std::swap(a, c);
      if (c > n) return false;
      const int64_t depth = h.PairDepth;
      if (h.Version < 200)
        entry = ((a - 1) * n - (a - 1) * (a - 2) / 2 + (c - a)) * depth + b - 1;
      else
        entry = ((a - 1) * n + (c - 1)) * depth + b - 1;
      return true;
    }
    default:
      return false;
  }
}

bool DecodeInterpretationHeader(const std::string& bytes, InterpretationHeader& h) {
  if (bytes.size() < static_cast<size_t>(kInterpretationHeaderBytes)) return false;
  h.Version = Int16At(bytes, 0);
  h.TableOffset[0] = 0;
  for (int t = 1; t <= kInterpretationTables; ++t) h.TableOffset[t] = Int32At(bytes, 2 + 4 * (t - 1));
  h.PairDepth = Int16At(bytes, 82);
  for (size_t i = 0; i < h.Rest.size(); ++i) h.Rest[i] = static_cast<uint8_t>(bytes[84 + i]);
  return true;
}

bool OpenInterpretation(Session& session, const std::string& path, InterpretationFile& file) {
  file = InterpretationFile{};
  std::string bytes;
  if (path.empty() || ReadFileBytes(path, bytes, kMaxSmallFileBytes) != 0) return false;
  InterpretationHeader header;
  if (!DecodeInterpretationHeader(bytes, header)) {
    session.ShowMessage("The interpretation file " + path + " is damaged: it is shorter than its header.",
                        kOkOnly + kIconStop, "Interpretation File Error");
    return false;
  }
  file.Path = path;
  file.Bytes = std::move(bytes);
  file.Header = header;
  if (header.Version >= 300) {
    session.ShowMessage("Interpretation file was created by an incompatible version of the interpretation compiler.",
                        kOkOnly + kIconStop, "Version Number Error");
    return false;
  }
  file.Base = 207 + 12 * static_cast<int64_t>(header.PairDepth);
  return true;
}

int InterpretationPointCount(const InterpretationHeader& h) { return h.Version < 200 ? 26 : 36; }

int64_t EntryPosition(const InterpretationHeader& h, int64_t base, int table, int a, int b, int c) {
  if (table < 1 || table > kInterpretationTables || h.TableOffset[table] == 0) return 0;
  int64_t entry = 0;
  if (!TableEntryNumber(h, table, a, b, c, entry)) return base - 1;
  return base + h.TableOffset[table] + entry * 6;
}

bool ReadInterpretation(const InterpretationFile& file, int table, int a, int b, int c, std::string& text) {
  text = kNoTextOfThisType;
  if (!file.IsOpen()) return false;
  const int64_t position = EntryPosition(file.Header, file.Base, table, a, b, c);
  const auto size = static_cast<int64_t>(file.Bytes.size());
  if (position <= 0 || position + 5 > size) return false;
  const int64_t textPosition = Int32At(file.Bytes, position - 1);
  const int64_t textLength = Int16At(file.Bytes, position + 3);
  if (textPosition == 0) {
    text = kNoTextForTopic;
    return false;
  }
  if (textPosition < 0 || textLength < 0 || textPosition - 1 + textLength > size) return false;
  text = file.Bytes.substr(textPosition - 1, textLength);
  return true;
}

int InterpretationIndex(int point) {
  if (point >= 1 && point <= 3) return point;
  if (point >= 4 && point <= 18) return point + 1;
  if (point == 19 || point == 20) return 20;
  if (point >= 21 && point <= 24) return point + 1;
  if (point == 25) return 21;
  return 0;
}

std::string FindInterpretationFile(const Session& session, const std::string& fileName) {
  for (const std::string* folder : {&session.paths.UserDataPath, &session.paths.SystemDataPath}) {
    if (folder->empty()) continue;
    const std::string path = EnsureBackslash(*folder) + fileName;
    if (FileExists(path)) return path;
  }
  return "";
}

std::array<std::string, 6> GroupTypeDescriptions(Session& session) {
  std::array<std::string, 6> texts;
  texts.fill(kNoTextOfThisType);
  InterpretationFile file;
  if (!OpenInterpretation(session, FindInterpretationFile(session, "general.int"), file)) return texts;
  for (int i = 0; i < 6; ++i) ReadInterpretation(file, 4, 11 + i, 0, 0, texts[i]);
  return texts;
}

}  // namespace vintar
