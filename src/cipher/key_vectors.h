// The key vectors as the rest of the family takes them.
#ifndef PLX_SRC_CIPHER_KEY_VECTORS_H
#define PLX_SRC_CIPHER_KEY_VECTORS_H

#include "cipher/secrets.h"

namespace plx::cipher {

// Whether `dst`, which holds `dst_size` bytes, can take a vector. The size counts as signed: one
// above 0x7FFFFFFF is too small.
bool takes_vector(const unsigned char* dst, unsigned int dst_size);

// The vector of the CCipher instance.
unsigned char* instance_vector(unsigned char* dst, unsigned int dst_size);

}  // namespace plx::cipher

#endif
