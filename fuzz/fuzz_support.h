// Shared by the fuzz harnesses: one started session per process on a
// temporary folder, put back to its start-up state before every input, and
// byte-exact file helpers. Every harness works in one folder of fixed file
// names, so that an input runs the same way each time it is replayed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/messages.h"
#include "core/session.h"

namespace vintar::fuzz {

class FuzzSession {
 public:
  // The process's session, started once on first use.
  static FuzzSession& Get();

  // Back to the state right after start-up: the session as it was, no
  // messages kept and, unless a harness uses no files, an empty work folder.
  Session& Reset(bool emptyWorkFolder = true);

  Session& session() { return session_; }
  CapturingSink& sink() { return sink_; }
  // A path in the work folder, which Reset empties.
  std::string Work(const std::string& name) const { return work_ + name; }
  const std::string& root() const { return root_; }

 private:
  FuzzSession();

  std::string root_;  // the process's temporary folder, with a trailing '/'
  std::string work_;  // root_ + "work/"
  CapturingSink sink_;
  Session session_{sink_};
  Session pristine_{sink_};
};

void WriteBytes(const std::string& path, const std::string& bytes);
std::string ReadBytes(const std::string& path);

inline std::string AsString(const uint8_t* data, size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace vintar::fuzz
