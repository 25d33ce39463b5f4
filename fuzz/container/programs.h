// One function a container: runs the rest of the input on it and on its naive model.
#ifndef PLX_FUZZ_CONTAINER_PROGRAMS_H
#define PLX_FUZZ_CONTAINER_PROGRAMS_H

#include "../program.h"

namespace plx_fuzz {

void run_array(Program& program);
void run_buffer_list(Program& program);
void run_hash_table(Program& program);
void run_string_array(Program& program);
void run_text(Program& program);

}  // namespace plx_fuzz

#endif
