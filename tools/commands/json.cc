// plxutil json: check, find, tree.
#include <fmt/core.h>
#include <string.h>

#include "commands/commands.h"
#include "json/tree.h"
#include "json/walk.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"

namespace plx::tool {
namespace {

struct JsonOptions {
  std::string source;
  std::string name;
  std::string kind = "any";
  bool ignore_case = false;
  bool json = false;
};

// A text as the library takes it: up to its first zero byte.
std::string read_json(const std::string& source) {
  std::string text = read_whole(source, kLargestInput);
  const size_t length = strlen(text.c_str());
  if (length != text.size()) {
    fmt::print(stderr, "{} {}: a zero byte at {} ends the text\n",
               paint(Tone::kWarning, "note:", stderr), name_of(source), length);
    text.resize(length);
  }
  return text;
}

std::string place_of(const std::string& source, const JsonRefusal& refusal) {
  return fmt::format("{}: line {}, column {} (byte {})", name_of(source), refusal.line,
                     refusal.column, refusal.byte);
}

JsonTree parse_or_refuse(const std::string& source, const std::string& text) {
  JsonTree tree(PLX_ParseJsonString(text.c_str()));
  if (tree != nullptr) return tree;
  const JsonRefusal refusal = walk_json(text.c_str());
  if (!refusal.refused) system_failure(source, ENOMEM, "the library could not build the tree");
  refuse(fmt::format("{}: {}", place_of(source, refusal), refusal.rule));
}

void check(const JsonOptions& options) {
  const std::string text = read_json(options.source);
  const bool valid = JsonTree(PLX_ParseJsonString(text.c_str())) != nullptr;
  const JsonRefusal refusal = walk_json(text.c_str());
  if (valid == refusal.refused) {
    refuse("the library's verdict and the explanation differ",
           "the library may have been short of memory; else this is a fault of plxutil");
  }
  if (options.json) {
    JsonObject object;
    object.boolean("valid", valid);
    if (!valid) {
      object.number("byte", static_cast<long long>(refusal.byte))
          .number("line", static_cast<long long>(refusal.line))
          .number("column", static_cast<long long>(refusal.column))
          .text("rule", refusal.rule);
    }
    put(object.str() + "\n");
  }
  if (!valid) refuse(fmt::format("{}: {}", place_of(options.source, refusal), refusal.rule));
  if (!options.json) {
    fmt::print("{}: {}\n", name_of(options.source), paint(Tone::kGood, "valid"));
  }
}

std::string number_text(double number) { return fmt::format("{:.17g}", number); }

// The answer of the search that was asked for, as text and as JSON; false when it is a miss.
bool search(const PLX_JsonValue* tree, const JsonOptions& options, std::string* text,
            std::string* json) {
  const char* name = options.name.c_str();
  const PLX_JsonValue* value = options.ignore_case ? PLX_FindFromJsonValueiCase(tree, name)
                                                   : PLX_FindFromJsonValue(tree, name);
  if (value == nullptr) return false;
  if (options.kind == "number") {
    double number;
    if (!options.ignore_case) {
      if (PLX_FindNumberFromJsonValue(tree, name, &number) != 0) return false;
    } else {
      if (value->type != PLX_JSON_STRING) return false;
      number = PLX_GetJsonValueNumber(value);
    }
    *text = number_text(number) + "\n";
    *json = json_quote(number_text(number));
    return true;
  }
  if (options.kind == "boolean") {
    const int boolean = PLX_GetJsonValueBoolean(value);
    if (boolean < 0) return false;
    *json = boolean == 1 ? "true" : "false";
    *text = *json + "\n";
    return true;
  }
  const bool wanted = options.kind == "any" ||
                      (options.kind == "string" && value->type == PLX_JSON_STRING) ||
                      (options.kind == "object" && value->type == PLX_JSON_OBJECT) ||
                      (options.kind == "array" && value->type == PLX_JSON_ARRAY);
  if (!wanted) return false;
  const char* scalar = PLX_GetJsonValueString(value);
  *text = scalar != nullptr ? std::string(scalar) + "\n" : draw_tree(value);
  *json = tree_json(value);
  return true;
}

void find(const JsonOptions& options) {
  const std::string source_text = read_json(options.source);
  const JsonTree tree = parse_or_refuse(options.source, source_text);
  std::string text, json;
  if (search(tree.get(), options, &text, &json)) {
    put(options.json ? json + "\n" : text);
    return;
  }
  const bool other_kind = PLX_FindFromJsonValue(tree.get(), options.name.c_str()) != nullptr;
  refuse(fmt::format("{}: no {}'{}'", name_of(options.source),
                     options.kind == "any" ? "" : options.kind + " ", options.name),
         other_kind ? "the first member of that name is of another kind, and only the first counts"
                    : "see the names with 'plxutil json tree'");
}

void tree(const JsonOptions& options) {
  const std::string text = read_json(options.source);
  const JsonTree tree = parse_or_refuse(options.source, text);
  put(options.json ? tree_json(tree.get()) + "\n" : draw_tree(tree.get()));
}

}  // namespace

void add_json_commands(CLI::App& program) {
  CLI::App& json = *program.add_subcommand("json", "JSON as the library reads it");
  json.require_subcommand(1);
  const char* input = "the JSON text; standard input when - or absent";

  CLI::App& check_command = *json.add_subcommand("check", "say whether it parses, and where not");
  auto options = add_action<JsonOptions>(check_command, check);
  add_input(check_command, &options->source, input);
  check_command.add_flag("--json", options->json, "print JSON");

  CLI::App& find_command = *json.add_subcommand("find", "print the first member of a name");
  options = add_action<JsonOptions>(find_command, find);
  find_command.add_option("name", options->name, "the member's name")
      ->type_name("NAME")
      ->required();
  add_input(find_command, &options->source, input);
  find_command.add_flag("-i,--ignore-case", options->ignore_case, "A to Z equal a to z");
  find_command
      .add_option("--as", options->kind, "any (default), string, number, boolean, object or array")
      ->type_name("KIND")
      ->check(CLI::IsMember({"any", "string", "number", "boolean", "object", "array"}));
  find_command.add_flag("--json", options->json, "print JSON");

  CLI::App& tree_command = *json.add_subcommand("tree", "draw the tree");
  options = add_action<JsonOptions>(tree_command, tree);
  add_input(tree_command, &options->source, input);
  tree_command.add_flag("--json", options->json, "print strict JSON, every scalar as a string");
}

}  // namespace plx::tool
