#include "automation/name_uuid.h"

#include <cstdio>
#include <vector>

namespace zarvik::automation {
namespace {

constexpr UuidBytes kNamespace = {0xcf, 0xb7, 0x6b, 0x2f, 0xd6, 0xbd, 0x49, 0x52,
                                  0xa2, 0x18, 0xbc, 0xb8, 0x62, 0x5e, 0x0c, 0x59};

uint32_t Rotl(uint32_t x, int n) { return (x << n) | (x >> (32 - n)); }

// SHA-1 (FIPS 180-4) of a short message, as RFC 4122 section 4.3 needs it.
std::array<uint8_t, 20> Sha1(std::vector<uint8_t> message) {
  const uint64_t bits = static_cast<uint64_t>(message.size()) * 8;
  message.push_back(0x80);
  while (message.size() % 64 != 56) message.push_back(0);
  for (int i = 7; i >= 0; --i) message.push_back(static_cast<uint8_t>(bits >> (i * 8)));
  uint32_t h[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (size_t block = 0; block < message.size(); block += 64) {
    uint32_t w[80];
    for (int t = 0; t < 16; ++t) {
      const uint8_t* p = &message[block + t * 4];
      w[t] = (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
    }
    for (int t = 16; t < 80; ++t) w[t] = Rotl(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16], 1);
    uint32_t a = h[0], b = h[1], c = h[2], d = h[3], e = h[4];
    for (int t = 0; t < 80; ++t) {
      uint32_t f = 0;
      uint32_t k = 0;
      if (t < 20) {
        f = (b & c) | (~b & d), k = 0x5A827999;
      } else if (t < 40) {
        f = b ^ c ^ d, k = 0x6ED9EBA1;
      } else if (t < 60) {
        f = (b & c) | (b & d) | (c & d), k = 0x8F1BBCDC;
      } else {
        f = b ^ c ^ d, k = 0xCA62C1D6;
      }
      const uint32_t next = Rotl(a, 5) + f + e + k + w[t];
      e = d, d = c, c = Rotl(b, 30), b = a, a = next;
    }
    h[0] += a, h[1] += b, h[2] += c, h[3] += d, h[4] += e;
  }
  std::array<uint8_t, 20> digest{};
  for (int i = 0; i < 20; ++i) digest[i] = static_cast<uint8_t>(h[i / 4] >> (24 - (i % 4) * 8));
  return digest;
}

}  // namespace

UuidBytes NameUuid(const std::string& name) {
  std::vector<uint8_t> message(kNamespace.begin(), kNamespace.end());
  message.insert(message.end(), name.begin(), name.end());
  const std::array<uint8_t, 20> digest = Sha1(std::move(message));
  UuidBytes uuid{};
  for (int i = 0; i < 16; ++i) uuid[i] = digest[i];
  uuid[6] = static_cast<uint8_t>((uuid[6] & 0x0F) | 0x50);  // version 5
  uuid[8] = static_cast<uint8_t>((uuid[8] & 0x3F) | 0x80);  // RFC 4122 variant
  return uuid;
}

std::string UuidText(const UuidBytes& uuid) {
  std::string text;
  char hex[3];
  for (int i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    std::snprintf(hex, sizeof hex, "%02x", uuid[i]);
    text += hex;
  }
  return text;
}

std::string LibraryUuidName(const std::string& library) { return library + ".library"; }

std::string InterfaceUuidName(const std::string& library, const std::string& cls) {
  return library + ".interface._" + cls;
}

std::string ClassUuidName(const std::string& library, const std::string& cls) {
  return library + ".coclass." + cls;
}

std::string TypeUuidName(const std::string& library, const std::string& type) {
  return library + ".type." + type;
}

}  // namespace zarvik::automation
