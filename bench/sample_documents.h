// Documents that the benchmarks and the tests share. All are RFC 8259 as well, so that other
// readers take them.
#ifndef PLX_BENCH_SAMPLE_DOCUMENTS_H
#define PLX_BENCH_SAMPLE_DOCUMENTS_H

#include <stddef.h>

#include <string>

namespace plx_test {

// {"k0":v,"k1":v,...} or [v,v,...]
inline std::string container(size_t count, const std::string& value, bool is_object) {
  std::string out(1, is_object ? '{' : '[');
  for (size_t i = 0; i < count; ++i) {
    if (is_object) out += "\"k" + std::to_string(i) + "\":";
    out += value + (i + 1 < count ? "," : "");
  }
  return out + (is_object ? '}' : ']');
}

// A cipher request of some 200 bytes.
inline std::string sample_request() {
  return R"({"encryptMode":"CBC","cipherSize":"128","paddingMode":"PKCS7Padding",)"
         R"("cipherPrefix":"0123456789ab","IVPrefix":"0123456789abc",)"
         R"("cipherText":"5F2A90C41B77D38E6A0F4C2B9D815E37"})";
}

// One object of `count` members.
inline std::string sample_object(size_t count) {
  std::string out = "{";
  for (size_t i = 0; i < count; ++i) {
    out += (i > 0 ? ",\"member_" : "\"member_") + std::to_string(i) + "\":\"value of " +
           std::to_string(i * 7919) + '"';
  }
  return out + '}';
}

// Indented groups of settings of every kind, 19 KiB of them.
inline std::string sample_configuration() {
  std::string out = "{\n";
  for (int group = 0; group < 48; ++group) {
    const std::string n = std::to_string(group);
    out +=
        "  \"service_" + n + "\": {\n    \"enabled\": " + (group % 3 == 0 ? "false" : "true") +
        ",\n    \"priority\": " + n + ",\n    \"timeout\": " + n + ".25,\n" +
        "    \"address\": \"http:\\/\\/box.example\\/service\\/" + n + "?mode=live\",\n" +
        "    \"channels\": [101, 102, 103, 20" + n +
        "],\n    \"limits\": {\"low\": 10, \"high\": " + n +
        "000},\n    \"title\": \"Dienst f\xc3\xbcr Ger\\u00e4t " + n + " im Wohnzimmer\",\n" +
        "    \"note\": \"A setting that somebody wrote a sentence about, with a \\\"quote\\\" in "
        "it.\"\n  },\n";
  }
  return out + "  \"version\": \"2.4.1\"\n}\n";
}

// `rows` arrays of 480 small objects.
inline std::string sample_small_objects(size_t rows) {
  std::string out = "[";
  size_t id = 0;
  for (size_t row = 0; row < rows; ++row) {
    out += row > 0 ? ",[" : "[";
    for (size_t i = 0; i < 480; ++i, ++id) {
      out += (i > 0 ? ",{\"id\":" : "{\"id\":") + std::to_string(id) + ",\"name\":\"item " +
             std::to_string(id) + "\",\"price\":" + std::to_string(id % 977) +
             ".5,\"tags\":[\"a\",\"b\"]}";
    }
    out += ']';
  }
  return out + ']';
}

}  // namespace plx_test

#endif
