// The project header file (.nat): read on its own, then opened with a small
// valid .dat of each format version beside it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/project_file.h"
#include "fuzz/fuzz_support.h"

namespace {

constexpr const char* kDatVersion2 =
    "\"Ann Fuzz\",1958,8,12,15,40,0,0,3,\"BST\",-1,\"Leeds, England\",1.55,53.8,-1,0,\"Self |2 |Subject |\"\r\n"
    "\"Bob Fuzz\",1929,3,4,6,15,0,0,3,\"GMT\",0,\"Bradford, England\",1.75,53.7833,0,0,\"Father |1 |Mill |\"\r\n";

constexpr const char* kDatVersion1 =
    "\"Ann Fuzz born\",\"3 Feb 1932\",0,3,\"AEST\",\"-10:00\",\"7:20 am\",\"Hobart, Tasmania\",\"147E20\",\"42S53\"\r\n"
    "\"Moves\",\"2 Jan 1946\",7,0,\"AEST\",\"-10:00\",\"\",\"Launceston, Tasmania\",\"147E08\",\"41S26\"\r\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string nat = vintar::fuzz::AsString(data, size);

  const std::string natPath = fuzz.Work("header.nat");
  vintar::fuzz::WriteBytes(natPath, nat);
  vintar::ProjectHeader header;
  vintar::ResetProjectHeader(header);
  bool failed = false;
  vintar::ReadProjectHeader(session, natPath, header, nullptr, failed);
  if (!failed) (void)vintar::FormatNatFile(header);

  // The same header as the companion of a version 2 and a version 1 .dat.
  for (const char* stem : {"two", "one"}) {
    const std::string datPath = fuzz.Work(std::string(stem) + ".dat");
    vintar::fuzz::WriteBytes(fuzz.Work(std::string(stem) + ".nat"), nat);
    vintar::fuzz::WriteBytes(datPath, stem[0] == 't' ? kDatVersion2 : kDatVersion1);
    vintar::OpenProjectFiles(session, datPath, nullptr);
  }
  return 0;
}
