// The project record file (.dat), both format versions. The first byte
// chooses the companion .nat: none, a fixed version 2 one with categories, a
// fixed version 1 one with its Enabled list, or one made of the input bytes
// after the first NUL. The rest is the .dat. An open that succeeds is saved
// to a second project and that one is opened again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/project_file.h"
#include "fuzz/fuzz_support.h"

namespace {

constexpr const char* kNatVersion2 =
    "VINTAR 2\r\n"
    "\"Fuzz Family\",\"Ann Fuzz\",\"12 Aug 1958\",\"3:40 pm\",\"Leeds, England\",\"53N48\",\"1W33\",\"BST\","
    "\"-1:00\",\"0:00 am\",\"11:59 pm\"\r\n"
    "\"Relationship |Birth Order |Notes |\",\"0 |1 |2 |\"\r\n";

constexpr const char* kNatVersion1 =
    "\"Fuzz Household\",\"Ann Fuzz\",\"3 Feb 1932\",\"7:20 am\",\"Hobart, Tasmania\",\"42S53\",\"147E20\","
    "\"AEST\",\"-10:00\",\"0:00 am\",\"11:59 pm\"\r\n"
    "-1\r\n0\r\n-1\r\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();

  const int natChoice = data[0] & 3;
  std::string dat = vintar::fuzz::AsString(data + 1, size - 1);
  const std::string datPath = fuzz.Work("project.dat");
  const std::string natPath = fuzz.Work("project.nat");
  switch (natChoice) {
    case 1:
      vintar::fuzz::WriteBytes(natPath, kNatVersion2);
      break;
    case 2:
      vintar::fuzz::WriteBytes(natPath, kNatVersion1);
      break;
    case 3: {
      const size_t nul = dat.find('\0');
      if (nul != std::string::npos) {
        vintar::fuzz::WriteBytes(natPath, dat.substr(nul + 1));
        dat.resize(nul);
      }
      break;
    }
    default:
      break;
  }
  vintar::fuzz::WriteBytes(datPath, dat);

  if (!vintar::OpenProjectFiles(session, datPath, nullptr)) return 0;

  // Save everything to a new project and read that back.
  const std::string copyPath = fuzz.Work("copy.dat");
  vintar::ProjectState& project = session.project;
  project.Status.NatChanged = vintar::kTrue;
  project.Status.DataChanged = vintar::kTrue;
  bool failed = false;
  vintar::WriteProject(session, copyPath, project.Header, project.Events, failed, false);
  if (!failed) vintar::OpenProjectFiles(session, copyPath, nullptr);
  return 0;
}
