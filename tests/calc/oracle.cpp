#include "calc/oracle.h"

#include <swephexp.h>

namespace vintar::testing {

OracleHouses LibraryHouses(double ramc, double latitude, double obliquity, char letter) {
  double cusps[37] = {};
  double ascmc[10] = {};
  OracleHouses r;
  r.ok = swe_houses_armc(ramc, latitude, obliquity, letter, cusps, ascmc) == OK;
  for (int n = 1; n <= 12; ++n) r.cusps[n] = cusps[n];
  r.ascendant = ascmc[SE_ASC];
  r.midheaven = ascmc[SE_MC];
  r.vertex = ascmc[SE_VERTEX];
  r.equatorialAscendant = ascmc[SE_EQUASC];
  return r;
}

}  // namespace vintar::testing
