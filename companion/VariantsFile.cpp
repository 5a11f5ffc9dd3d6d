// Reads and writes the list at the head of a program with variants.

#include "companion/VariantsFile.h"

#include "base/ProgramHash.h"
#include "companion/WholeFile.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringExtras.h"

using namespace corvane;

static constexpr const char *firstLine = "// Variants of kernels, format 1\n";

static bool isVariantName(llvm::StringRef name) {
  return name.contains("_coarsed_") && llvm::all_of(name, [](char c) {
           return llvm::isAlnum(c) || c == '_' || c == '$';
         });
}

static bool readNumber(llvm::StringRef text, std::size_t &number) {
  return !text.getAsInteger(10, number);
}

// "BEGIN SIZE NAME"
static bool readVariant(llvm::StringRef text, VariantsFile &file) {
  const auto [begin, others] = text.split(' ');
  const auto [size, name] = others.split(' ');
  ListedVariant variant;
  variant.name = name.str();
  if (!isVariantName(name) || !readNumber(begin, variant.begin) ||
      !readNumber(size, variant.size))
    return false;
  file.variants.push_back(std::move(variant));
  return true;
}

// "HASH PATH"
static bool readIncluded(llvm::StringRef text, VariantsFile &file) {
  const auto [hash, path] = text.split(' ');
  file.included.push_back({hash.str(), path.str()});
  return !hash.empty() && !path.empty();
}

// Whether each variant has a name and a place of its own in the program.
static bool areInOrder(const VariantsFile &file) {
  std::set<llvm::StringRef> names;
  std::size_t end = 0;
  for (const ListedVariant &variant : file.variants) {
    const std::size_t left = file.program.size() - end;
    if (variant.begin < end || variant.begin - end > left ||
        variant.size > left - (variant.begin - end) ||
        !names.insert(variant.name).second)
      return false;
    end = variant.begin + variant.size;
  }
  return file.variants.empty() == file.program.empty();
}

std::optional<VariantsFile> corvane::readVariants(llvm::StringRef bytes) {
  if (!bytes.consume_front(firstLine))
    return std::nullopt;
  VariantsFile file;
  while (bytes.consume_front("// ")) {
    llvm::StringRef line;
    std::tie(line, bytes) = bytes.split('\n');
    const auto [kind, text] = line.split(' ');
    std::size_t size = 0;
    if (kind == "program") {
      if (!readNumber(text, size) || size != bytes.size())
        return std::nullopt;
      file.program = bytes.str();
      return areInOrder(file) ? std::optional(std::move(file)) : std::nullopt;
    }
    if (kind == "none")
      file.whyNone = text.str();
    else if (!(kind == "variant" && readVariant(text, file)) &&
             !(kind == "included" && readIncluded(text, file)))
      return std::nullopt;
  }
  return std::nullopt;
}

std::string corvane::variantsText(const VariantsFile &file) {
  std::string text = firstLine;
  for (const ListedVariant &variant : file.variants)
    text += "// variant " + std::to_string(variant.begin) + " " +
            std::to_string(variant.size) + " " + variant.name + "\n";
  for (const IncludedFile &included : file.included)
    text += "// included " + included.hash + " " + included.path + "\n";
  if (!file.whyNone.empty())
    text += "// none " + file.whyNone + "\n";
  return text + "// program " + std::to_string(file.program.size()) + "\n" +
         file.program;
}

namespace {
/// A variant's text, and where it belongs in the source without variants.
struct Insertion {
  std::size_t place = 0;
  std::string name;
  std::string text;
};
} // namespace

// Leaves the source without variants in \p file.
static std::vector<Insertion> takeOut(VariantsFile &file) {
  std::vector<Insertion> insertions;
  std::string source;
  std::size_t end = 0; // of what was looked at
  for (const ListedVariant &variant : file.variants) {
    source.append(file.program, end, variant.begin - end);
    end = variant.begin + variant.size;
    insertions.push_back({source.size(), variant.name,
                          file.program.substr(variant.begin, variant.size)});
  }
  source.append(file.program, end);
  file.variants.clear();
  file.program = std::move(source);
  return insertions;
}

// The opposite, for insertions in the order of their places.
static void putIn(VariantsFile &file,
                  const std::vector<Insertion> &insertions) {
  std::string program;
  std::size_t end = 0; // of the source that was copied
  for (const Insertion &insertion : insertions) {
    program.append(file.program, end, insertion.place - end);
    end = insertion.place;
    file.variants.push_back(
        {insertion.name, program.size(), insertion.text.size()});
    program += insertion.text;
  }
  program.append(file.program, end);
  file.program = insertions.empty() ? std::string() : std::move(program);
}

void corvane::keepVariants(VariantsFile &file,
                           const std::set<std::string> &names) {
  std::vector<Insertion> insertions = takeOut(file);
  llvm::erase_if(insertions, [&names](const Insertion &insertion) {
    return names.count(insertion.name) == 0;
  });
  putIn(file, insertions);
}

bool corvane::addVariants(VariantsFile &file, VariantsFile other) {
  if (other.variants.empty())
    return true;
  if (file.variants.empty()) {
    file = std::move(other);
    return true;
  }
  VariantsFile joined = file;
  std::vector<Insertion> insertions = takeOut(joined);
  std::set<std::string> names;
  for (const Insertion &insertion : insertions)
    names.insert(insertion.name);
  for (Insertion &insertion : takeOut(other))
    if (names.insert(insertion.name).second)
      insertions.push_back(std::move(insertion));
  if (joined.program != other.program)
    return false;
  llvm::stable_sort(insertions, [](const Insertion &a, const Insertion &b) {
    return a.place < b.place;
  });
  putIn(joined, insertions);
  file = std::move(joined);
  return true;
}

bool corvane::includesAreUnchanged(const VariantsFile &file) {
  constexpr std::size_t mostIncluded = std::size_t{16} << 20;
  return llvm::all_of(file.included, [](const IncludedFile &included) {
    const std::optional<std::string> bytes =
        readWholeFile(included.path, mostIncluded);
    return bytes && sha256Text({llvm::StringRef(*bytes)}) == included.hash;
  });
}

std::string corvane::variantsFileName(llvm::StringRef programHash) {
  return (programHash + ".cl").str();
}
