#include "calc/ephemeris.h"

#include <swephexp.h>

namespace vintar {

void SetEphemerisPath(const std::string& path) { swe_set_ephe_path(path.c_str()); }

void CloseEphemeris() { swe_close(); }

int EphemerisCalc(double jd, int body, int flags, double xx[6], std::string& error) {
  char serr[AS_MAXCH] = {0};
  int32 result = swe_calc(jd, body, flags, xx, serr);
  error = serr;
  return static_cast<int>(result);
}

}  // namespace vintar
