// Runs a fuzz harness over saved inputs without libFuzzer: each argument is
// a file or a folder (searched recursively, in name order); every file's
// bytes go to LLVMFuzzerTestOneInput once. "--if-exists PATH" names a path
// that may be missing. This is the regression run of the test suite.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;

bool Collect(const fs::path& path, std::vector<fs::path>& files) {
  std::error_code ec;
  if (fs::is_regular_file(path, ec)) {
    files.push_back(path);
    return true;
  }
  if (!fs::is_directory(path, ec)) return false;
  std::vector<fs::path> found;
  for (const auto& entry : fs::recursive_directory_iterator(path, ec))
    if (entry.is_regular_file(ec)) found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  files.insert(files.end(), found.begin(), found.end());
  return !ec;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<fs::path> files;
  int paths = 0;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    bool optional = false;
    if (arg == "--if-exists") {
      if (++i >= argc) break;
      arg = argv[i];
      optional = true;
    }
    ++paths;
    std::error_code ec;
    if (optional && !fs::exists(arg, ec)) continue;
    if (!Collect(arg, files)) {
      std::fprintf(stderr, "%s: cannot read %s\n", argv[0], arg.c_str());
      return 2;
    }
  }
  if (paths == 0) {
    std::fprintf(stderr, "usage: %s [--if-exists] FILE_OR_FOLDER...\n", argv[0]);
    return 2;
  }

  int ran = 0;
  for (const fs::path& file : files) {
    std::ifstream in(file, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
      std::fprintf(stderr, "%s: cannot read %s\n", argv[0], file.c_str());
      return 2;
    }
    // Named before the run, so that a crash shows which input caused it.
    std::printf("input %s (%zu bytes)\n", file.c_str(), bytes.size());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    ++ran;
  }
  std::printf("%s: ran %d inputs\n", fs::path(argv[0]).filename().c_str(), ran);
  return 0;
}
