// Writes the S-boxes of DES as circuits, for kernels that run many blocks at once.
//   make_des_circuits gates|ternary                     prints the header from the known best seeds
//   make_des_circuits gates|ternary BOX FIRST COUNT     looks for better ones
//
// A circuit for one output is looked for among the gates that stand already: one of them, a new
// gate on two or three of them, up to three new gates. Failing that the function is split on an
// input, half by half: inside a half the other half's rows do not matter, which makes it easier.
// The order of outputs and inputs comes from a seed.
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "digest/des_tables.h"

namespace {

using Table = uint64_t;  // of a function of the six inputs: bit x is its value for inputs x

constexpr int kNumInputs = 6;
constexpr int kMaxGates = 120;
constexpr size_t kMaxCandidates = 250;

// kAndNot is a & ~b. kTernary is any function of three; its table is the instruction's immediate.
enum class Op : uint8_t { kInput, kAnd, kOr, kXor, kAndNot, kTernary };

struct Gate {
  Op op;
  int a, b, c;
  uint8_t function;
  Table table;
};

struct Random {
  uint64_t state;
  explicit Random(uint64_t seed) : state(seed * 0x9E3779B97F4A7C15u + 1) {}
  uint32_t below(uint32_t bound) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<uint32_t>((state >> 33) % bound);
  }
};

Table apply(Op op, Table a, Table b) {
  switch (op) {
    case Op::kAnd:
      return a & b;
    case Op::kOr:
      return a | b;
    case Op::kXor:
      return a ^ b;
    default:
      return a & ~b;
  }
}

constexpr Op kPairOps[] = {Op::kAnd, Op::kOr, Op::kXor, Op::kAndNot};

struct Circuit {
  std::vector<Gate> gates;
  int outputs[4];
  unsigned inverted = 0;

  Circuit() {
    for (int i = 0; i < kNumInputs; ++i) {
      Table table = 0;
      for (int x = 0; x < 64; ++x) table |= static_cast<Table>(x >> (5 - i) & 1) << x;
      gates.push_back({Op::kInput, i, 0, 0, 0, table});
    }
  }
  int size() const { return static_cast<int>(gates.size()); }
  int add(Op op, int a, int b) {
    gates.push_back({op, a, b, 0, 0, apply(op, gates[a].table, gates[b].table)});
    return size() - 1;
  }
  int add_ternary(int a, int b, int c, uint8_t function) {
    Table table = 0;
    for (int x = 0; x < 64; ++x) {
      const int row = static_cast<int>((gates[a].table >> x & 1) << 2 |
                                       (gates[b].table >> x & 1) << 1 | (gates[c].table >> x & 1));
      table |= static_cast<Table>(function >> row & 1) << x;
    }
    gates.push_back({Op::kTernary, a, b, c, function, table});
    return size() - 1;
  }
};

// Looks for a gate that equals `target` where `care` has ones, adding gates to `circuit` as long as
// it stays below `limit`. Returns -1 when there is none.
class Search {
 public:
  Search(bool ternary, uint64_t seed) : ternary_(ternary), random_(seed) {}

  int find(Circuit& circuit, Table target, Table care, unsigned used, int limit) {
    int found = find_existing(circuit, target, care);
    if (found >= 0 || circuit.size() >= limit) return found;
    found = find_pair(circuit, target, care);
    if (found < 0 && ternary_) found = find_triple(circuit, target, care);
    if (found < 0 && circuit.size() + 2 <= limit)
      found = find_pair_of_pairs(circuit, target, care, limit);
    if (found < 0 && circuit.size() + 2 <= limit) found = split(circuit, target, care, used, limit);
    return found;
  }

 private:
  static int find_existing(const Circuit& circuit, Table target, Table care) {
    for (int i = 0; i < circuit.size(); ++i) {
      if (((circuit.gates[i].table ^ target) & care) == 0) return i;
    }
    return -1;
  }

  static int find_pair(Circuit& circuit, Table target, Table care) {
    for (int a = 0; a < circuit.size(); ++a) {
      for (int b = 0; b < circuit.size(); ++b) {
        for (Op op : kPairOps) {
          if (((apply(op, circuit.gates[a].table, circuit.gates[b].table) ^ target) & care) == 0) {
            return circuit.add(op, a, b);
          }
        }
      }
    }
    return -1;
  }

  // A ternary gate fits when the target is constant, where it matters, on each of the eight
  // combinations of its inputs.
  static int find_triple(Circuit& circuit, Table target, Table care) {
    const Table ones = target & care, zeros = ~target & care;
    for (int a = 0; a < circuit.size(); ++a) {
      for (int b = a + 1; b < circuit.size(); ++b) {
        for (int c = b + 1; c < circuit.size(); ++c) {
          uint8_t function = 0;
          int row = 0;
          for (; row < 8; ++row) {
            const Table cell = (row & 4 ? circuit.gates[a].table : ~circuit.gates[a].table) &
                               (row & 2 ? circuit.gates[b].table : ~circuit.gates[b].table) &
                               (row & 1 ? circuit.gates[c].table : ~circuit.gates[c].table);
            if ((cell & ones) != 0 && (cell & zeros) != 0) break;
            if ((cell & ones) != 0) function = static_cast<uint8_t>(function | 1 << row);
          }
          if (row == 8) return circuit.add_ternary(a, b, c, function);
        }
      }
    }
    return -1;
  }

  struct Pair {
    Table table;
    Op op;
    int a, b;  // b < 0: gate a itself
    int cost() const { return b < 0 ? 0 : 1; }
  };

  static int realize(Circuit& circuit, const Pair& pair) {
    return pair.b < 0 ? pair.a : circuit.add(pair.op, pair.a, pair.b);
  }

  // op(p, q) where p and q are gates or gates to be made of two.
  int find_pair_of_pairs(Circuit& circuit, Table target, Table care, int limit) {
    std::vector<Pair> pairs;
    for (int a = 0; a < circuit.size(); ++a)
      pairs.push_back({circuit.gates[a].table & care, Op::kInput, a, -1});
    for (int a = 0; a < circuit.size(); ++a) {
      for (int b = 0; b < circuit.size(); ++b) {
        if (a == b) continue;
        for (Op op : kPairOps) {
          if (op != Op::kAndNot && b < a) continue;
          pairs.push_back(
              {apply(op, circuit.gates[a].table, circuit.gates[b].table) & care, op, a, b});
        }
      }
    }
    target &= care;
    Pair best_p{}, best_q{};
    Op best_op = Op::kXor;
    int best_cost = limit - circuit.size() + 1;
    const auto consider = [&](Op op, const Pair& p, const Pair& q) {
      const int cost = 1 + p.cost() + q.cost();
      if (cost < best_cost) best_cost = cost, best_op = op, best_p = p, best_q = q;
    };
    std::unordered_map<Table, const Pair*> by_table(2 * pairs.size());
    std::vector<const Pair*> above, below, apart;
    for (const Pair& pair : pairs) {
      by_table.emplace(pair.table, &pair);  // the cheaper ones come first
      if ((target & ~pair.table) == 0) above.push_back(&pair);
      if ((pair.table & ~target) == 0) below.push_back(&pair);
      if ((pair.table & target) == 0) apart.push_back(&pair);
    }
    for (auto* list : {&above, &below, &apart})
      list->resize(std::min(list->size(), kMaxCandidates));
    for (const Pair& pair : pairs) {
      const auto other = by_table.find(pair.table ^ target);
      if (other != by_table.end()) consider(Op::kXor, pair, *other->second);
    }
    for (const Pair* p : above) {
      for (const Pair* q : above) {
        if ((p->table & q->table) == target) consider(Op::kAnd, *p, *q);
      }
      for (const Pair* q : apart) {
        if ((p->table & ~q->table) == target) consider(Op::kAndNot, *p, *q);
      }
    }
    for (const Pair* p : below) {
      for (const Pair* q : below) {
        if ((p->table | q->table) == target) consider(Op::kOr, *p, *q);
      }
    }
    if (best_cost > limit - circuit.size()) return -1;
    const int p = realize(circuit, best_p), q = realize(circuit, best_q);
    return circuit.add(best_op, p, q);
  }

  // target = low ^ (input & difference), or with ternary gates input ? high : low.
  int split(Circuit& circuit, Table target, Table care, unsigned used, int limit) {
    int order[kNumInputs];
    std::iota(order, order + kNumInputs, 0);
    for (int i = kNumInputs - 1; i > 0; --i)
      std::swap(order[i], order[random_.below(static_cast<uint32_t>(i + 1))]);
    Circuit best;
    int best_gate = -1;
    int tries = used == 0 ? 6 : 3;
    for (int input : order) {
      if (used >> input & 1) continue;
      if (tries-- == 0) break;
      Circuit trial = circuit;
      const Table selector = trial.gates[input].table;
      const unsigned now_used = used | 1u << input;
      const int glue = ternary_ ? 1 : 2;
      const int low = find(trial, target, care & ~selector, now_used, limit - glue);
      if (low < 0) continue;
      const Table rest = ternary_ ? target : target ^ trial.gates[low].table;
      const int high = find(trial, rest, care & selector, now_used, limit - glue);
      if (high < 0 || trial.size() + glue > limit) continue;
      int gate;
      if (ternary_) {
        gate = trial.add_ternary(input, high, low, 0xCA);
      } else {
        gate = trial.add(Op::kXor, low, trial.add(Op::kAnd, input, high));
      }
      if (best_gate < 0 || trial.size() < best.size()) {
        best = trial;
        best_gate = gate;
        limit = best.size() - 1;
      }
    }
    if (best_gate >= 0) circuit = best;
    return best_gate;
  }

  bool ternary_;
  Random random_;
};

Table output_table(int box, int output, unsigned inverted) {
  Table table = 0;
  for (unsigned x = 0; x < 64; ++x) {
    table |= static_cast<Table>(plx::digest::des::select(box, x ^ inverted) >> (3 - output) & 1)
             << x;
  }
  return table;
}

// Gates of two inputs give 0 for zeros, so the circuit takes some inputs inverted such that the
// S-box does, too. Inverting is free: it goes into the key.
unsigned inverted_inputs(int box, uint64_t choice) {
  unsigned x = 0;
  for (choice = choice % 4 + 1;; ++x) {
    if (plx::digest::des::select(box, x) == 0 && --choice == 0) return x;
  }
}

// The circuit of one S-box, or an empty one when it has `limit` gates or more.
Circuit make_circuit(bool ternary, int box, uint64_t seed, int limit) {
  int order[4] = {0, 1, 2, 3};
  for (uint64_t i = seed % 24; i != 0; --i) std::next_permutation(order, order + 4);
  Search search(ternary, seed);
  Circuit circuit;
  circuit.inverted = ternary ? 0 : inverted_inputs(box, seed / 24);
  for (int output : order) {
    circuit.outputs[output] =
        search.find(circuit, output_table(box, output, circuit.inverted), ~Table{0}, 0, limit - 1);
    if (circuit.outputs[output] < 0) return Circuit();
  }
  return circuit;
}

// The best of the seeds 1 to 2800, and the sizes that they were held below.
struct Choice {
  uint64_t seed;
  int limit;
};
constexpr Choice kBest[2][8] = {
    {{901, 66}, {223, 60}, {103, 63}, {172, 49}, {631, 65}, {670, 63}, {649, 62}, {582, 62}},
    {{340, 39}, {244, 38}, {307, 38}, {137, 31}, {8, 41}, {99, 38}, {407, 38}, {529, 38}}};

std::string operand(const Circuit& circuit, int gate) {
  const bool is_input = circuit.gates[gate].op == Op::kInput;
  return is_input ? "x[" + std::to_string(gate) + "]" : "t" + std::to_string(gate - kNumInputs);
}

std::string expression(const Circuit& circuit, const Gate& gate) {
  const std::string a = operand(circuit, gate.a), b = operand(circuit, gate.b);
  switch (gate.op) {
    case Op::kAnd:
      return a + " & " + b;
    case Op::kOr:
      return a + " | " + b;
    case Op::kXor:
      return a + " ^ " + b;
    case Op::kAndNot:
      return a + " & ~" + b;
    default:
      break;
  }
  char function[8];
  snprintf(function, sizeof function, "0x%02X", gate.function);
  return std::string("ternary<") + function + ">(" + a + ", " + b + ", " +
         operand(circuit, gate.c) + ")";
}

void print_circuit(const Circuit& circuit, int box) {
  printf("\n// S%d: %d gates.\n", box + 1, circuit.size() - kNumInputs);
  printf("PLX_DES_INLINE void circuit(Box<%d>, const Vector* x, Vector* y) {\n", box);
  for (int i = kNumInputs; i < circuit.size(); ++i) {
    printf("  const Vector %s = %s;\n", operand(circuit, i).c_str(),
           expression(circuit, circuit.gates[i]).c_str());
  }
  for (int i = 0; i < 4; ++i)
    printf("  y[%d] = %s;\n", i, operand(circuit, circuit.outputs[i]).c_str());
  printf("}\n");
}

void print_header(bool ternary) {
  std::vector<Circuit> circuits;
  for (int box = 0; box < 8; ++box) {
    const Choice& choice = kBest[ternary][box];
    circuits.push_back(make_circuit(ternary, box, choice.seed, choice.limit));
  }
  printf(
      "// The S-boxes of DES as circuits; made by make_des_circuits, not to be edited. Six inputs\n"
      "// and four outputs, most significant first. The inputs of kInvertedInputs come inverted.\n"
      "template <int kBox>\nstruct Box {};\n\nconstexpr unsigned kInvertedInputs[8] = {");
  for (int box = 0; box < 8; ++box) printf("%s0x%02X", box ? ", " : "", circuits[box].inverted);
  printf("};\n");
  for (int box = 0; box < 8; ++box) print_circuit(circuits[box], box);
}

// Prints each seed that does better than those before it.
void look_for_better(bool ternary, int box, uint64_t first, uint64_t count) {
  int best = kMaxGates;
  for (uint64_t seed = first; seed < first + count; ++seed) {
    const Circuit circuit = make_circuit(ternary, box, seed, best);
    if (circuit.size() == kNumInputs) continue;
    best = circuit.size();
    printf("S%d seed %llu: %d gates\n", box + 1, static_cast<unsigned long long>(seed),
           best - kNumInputs);
    fflush(stdout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 5) return 2;
  const bool ternary = strcmp(argv[1], "ternary") == 0;
  if (argc == 2) {
    print_header(ternary);
  } else {
    look_for_better(ternary, atoi(argv[2]) - 1, strtoull(argv[3], nullptr, 10),
                    strtoull(argv[4], nullptr, 10));
  }
  return 0;
}
