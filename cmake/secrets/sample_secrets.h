// Sample secrets. A product brings a file of its own, in this form, and names it when it
// configures:
//
//     cmake --preset release -DPLX_SECRETS_FILE=/path/of/its/secrets.h
//
// The file is compiled into the library, once. It defines
//
//  - the texts that complete a JSON request: the suffix of every key (4 characters), the suffix of
//    every IV (4), and the IV prefix of a request that brings none (12). Data that was encrypted
//    under other texts cannot be read;
//  - seven vectors of 16 bytes, which key files are made with. Key files that were made under other
//    vectors cannot be read. No vector is written down: each is a seed of four words (byte 0 is the
//    lowest byte of the first word) and up to 32 steps that rewrite the bytes, in this order:
//
//      add(d, a, b)       byte d = byte a + byte b, modulo 256
//      subtract(d, a, b)  byte d = byte a - byte b, modulo 256
//      bit_and(d, a, b), bit_or(d, a, b), bit_xor(d, a, b)
//      doubled(d, a, b)   byte d = byte a, doubled modulo 256 as many times as byte b says
//
// The compiler refuses a text of another length, a byte that no step rewrites, a byte number above
// 15, and two vectors that come out alike. Draw seeds and steps at random, and see that every byte
// of the seed has a say in the outcome.
//
// The values below are public. Nothing that they protect is protected.

constexpr char kKeySuffix[] = "JwP4";
constexpr char kIvSuffix[] = "HeV6";
constexpr char kDefaultIvPrefix[] = "LumenoonemuL";

// "encrypt_stb_key": getVectorForSTBEncyptInitKey
constexpr VectorRecipe kStbKeyVector = {
    {0x9301425D, 0x191502AA, 0xE8774967, 0x8E7C60C5},
    {add(4, 13, 4),      add(14, 4, 14),      add(9, 4, 9),        subtract(15, 13, 15),
     subtract(1, 1, 15), doubled(15, 14, 5),  bit_xor(7, 15, 7),   add(6, 6, 4),
     bit_and(4, 5, 1),   add(12, 12, 4),      subtract(13, 5, 13), doubled(14, 12, 5),
     add(3, 13, 3),      add(8, 4, 8),        bit_or(4, 12, 9),    add(0, 0, 1),
     doubled(12, 1, 2),  bit_xor(10, 10, 15), add(11, 11, 3),      bit_xor(2, 2, 14),
     add(5, 5, 7),       add(0, 0, 1),        subtract(1, 1, 7),   bit_xor(8, 8, 13),
     subtract(0, 0, 11), bit_xor(2, 2, 15)}};

// "aes_prefix_key": getVectorForCipherPrefixInitKey
constexpr VectorRecipe kCipherPrefixVector = {
    {0x81563F03, 0xD4652028, 0x19013AC8, 0x3F02FE0E},
    {add(15, 13, 15),    subtract(13, 15, 13), subtract(4, 4, 5),    bit_xor(5, 5, 15),
     add(2, 15, 2),      doubled(15, 2, 0),    subtract(12, 12, 15), subtract(3, 3, 2),
     bit_and(15, 1, 13), subtract(7, 8, 7),    subtract(11, 11, 5),  doubled(15, 3, 14),
     add(9, 7, 9),       bit_xor(8, 13, 8),    bit_or(7, 4, 15),     bit_xor(10, 7, 10),
     doubled(4, 10, 14), bit_xor(6, 7, 6),     add(1, 1, 5),         subtract(0, 0, 3),
     bit_xor(14, 14, 0), bit_xor(3, 3, 13),    subtract(3, 3, 8),    bit_xor(7, 7, 1),
     subtract(5, 5, 11), subtract(10, 10, 6)}};

// "whitelist_key": getVectorForWhiteListInitKey
constexpr VectorRecipe kWhitelistVector = {
    {0xCD413B81, 0xD4250358, 0x44B41696, 0xD432012C},
    {bit_xor(1, 11, 1),  add(4, 1, 4),         add(8, 4, 8),      bit_xor(12, 4, 12),
     add(0, 0, 8),       doubled(1, 8, 5),     bit_xor(3, 4, 3),  bit_xor(6, 0, 6),
     bit_and(8, 11, 12), subtract(10, 9, 10),  bit_xor(7, 7, 4),  doubled(12, 6, 5),
     bit_xor(9, 9, 0),   subtract(11, 11, 10), bit_or(10, 0, 14), add(14, 14, 8),
     doubled(1, 0, 13),  bit_xor(15, 15, 1),   subtract(2, 1, 2), bit_xor(13, 13, 0),
     subtract(5, 5, 6),  bit_xor(11, 11, 0),   subtract(7, 7, 1), bit_xor(2, 2, 8),
     add(12, 12, 7),     add(7, 7, 15)}};

// "pvr_file_key": getVectorForPVRFileInitKey
constexpr VectorRecipe kPvrFileVector = {
    {0x3996034D, 0x8CF5A0DC, 0xF4F91103, 0x7BD0228A},
    {add(2, 15, 2),     subtract(12, 12, 2), add(6, 12, 6),     subtract(14, 12, 14),
     bit_xor(7, 7, 2),  doubled(2, 3, 8),    subtract(4, 9, 4), subtract(0, 0, 4),
     bit_and(4, 7, 6),  bit_xor(10, 10, 11), add(9, 4, 9),      doubled(4, 5, 1),
     bit_xor(3, 3, 6),  add(15, 14, 15),     bit_or(4, 10, 2),  subtract(11, 3, 11),
     doubled(15, 7, 8), subtract(13, 13, 0), bit_xor(5, 7, 5),  subtract(8, 8, 0),
     subtract(1, 1, 3), subtract(14, 14, 8), add(7, 7, 13),     bit_xor(7, 7, 12),
     add(3, 3, 2),      bit_xor(11, 11, 6)}};

// "epg_profile_key": getVectorForEPGProfileEncyptInitKey, which adds the box identifier
constexpr VectorRecipe kEpgProfileVector = {
    {0x028BA151, 0xFF0391D5, 0x6082DEB1, 0xB3882A12},
    {bit_xor(5, 15, 5),  subtract(4, 4, 5),    bit_xor(10, 4, 10),  subtract(8, 8, 10),
     bit_xor(15, 15, 8), doubled(5, 10, 3),    subtract(12, 12, 5), bit_xor(7, 14, 7),
     bit_and(8, 12, 3),  add(14, 8, 14),       bit_xor(2, 10, 2),   doubled(5, 7, 3),
     bit_xor(0, 15, 0),  subtract(13, 13, 14), bit_or(4, 15, 12),   add(9, 5, 9),
     doubled(10, 0, 6),  subtract(11, 11, 5),  add(1, 4, 1),        subtract(6, 6, 13),
     subtract(3, 3, 14), add(4, 4, 13),        subtract(8, 8, 4),   bit_xor(2, 2, 11),
     add(1, 1, 3),       add(6, 6, 5)}};

// getVectorForUpdateSTBInitKey
constexpr VectorRecipe kStbUpdateVector = {
    {0xB26B828E, 0xC502066D, 0xF3236602, 0xB6011564},
    {add(13, 13, 10),    bit_xor(3, 3, 13),   subtract(15, 5, 15), bit_xor(2, 15, 2),
     add(5, 2, 5),       doubled(15, 9, 8),   add(9, 15, 9),       subtract(0, 0, 5),
     bit_and(9, 13, 7),  bit_xor(4, 4, 7),    add(11, 11, 4),      doubled(5, 4, 8),
     subtract(1, 2, 1),  subtract(10, 10, 5), bit_or(13, 2, 14),   bit_xor(14, 2, 14),
     doubled(9, 14, 6),  subtract(12, 12, 1), bit_xor(7, 7, 6),    bit_xor(6, 6, 4),
     add(8, 8, 13),      add(6, 6, 5),        subtract(3, 3, 6),   subtract(6, 6, 10),
     bit_xor(13, 13, 0), add(7, 7, 5)}};

// getInitVector, the vector of the CCipher instance
constexpr VectorRecipe kInstanceVector = {
    {0x37C55828, 0x4C5497C3, 0x5401011F, 0xF01486D5},
    {bit_xor(1, 4, 1),    subtract(6, 6, 13), bit_xor(0, 6, 0),    add(8, 6, 8),
     add(13, 5, 13),      doubled(6, 1, 9),   subtract(12, 12, 9), subtract(7, 7, 1),
     bit_and(13, 8, 15),  subtract(4, 4, 14), add(2, 7, 2),        doubled(8, 7, 9),
     bit_xor(11, 11, 14), bit_xor(14, 1, 14), bit_or(1, 6, 14),    bit_xor(5, 4, 5),
     doubled(8, 4, 10),   add(15, 2, 15),     add(3, 6, 3),        bit_xor(10, 10, 11),
     add(9, 9, 3),        bit_xor(14, 14, 8), bit_xor(3, 3, 13),   add(15, 15, 13),
     add(5, 5, 11),       add(12, 12, 2)}};
