// Reads the descriptions of launches, and generates contents for buffers.
#include "tests/coarsening/KernelPlan.h"

#include <cstring>
#include <map>
#include <sstream>

namespace corvane::test {

static const std::map<std::string, size_t> &typeSizes() {
  static const std::map<std::string, size_t> sizes = {
      {"char", 1},   {"uchar", 1},   {"short", 2}, {"ushort", 2}, {"int", 4},
      {"uint", 4},   {"long", 8},    {"ulong", 8}, {"float", 4},  {"double", 8},
      {"float2", 8}, {"float4", 16}, {"int4", 16}, {"uchar4", 4}, {"int2", 8}};
  return sizes;
}

size_t sizeOfType(const std::string &type) {
  const auto found = typeSizes().find(type);
  return found == typeSizes().end() ? 0 : found->second;
}

static std::string trimmed(const std::string &text) {
  const size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string::npos)
    return "";
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

/// Reads "64x32"; returns the number of dimensions, 0 if the text is wrong.
static unsigned readSizes(const std::string &text,
                          std::array<size_t, 3> &sizes) {
  std::istringstream in(text);
  unsigned dims = 0;
  for (char cross = 'x'; dims < 3 && cross == 'x'; ++dims)
    if (!(in >> sizes[dims]))
      return 0;
    else if (!(in >> cross))
      return dims + 1;
  return dims;
}

static std::optional<LaunchShape> readLaunch(const std::string &text) {
  LaunchShape shape;
  shape.text = trimmed(text);
  std::string rest = text;
  const size_t plus = rest.find('+');
  if (plus != std::string::npos) {
    if (readSizes(trimmed(rest.substr(plus + 1)), shape.offset) == 0)
      return std::nullopt;
    rest.resize(plus);
  }
  const size_t slash = rest.find('/');
  if (slash != std::string::npos) {
    shape.hasLocal = true;
    if (readSizes(trimmed(rest.substr(slash + 1)), shape.local) == 0)
      return std::nullopt;
    rest.resize(slash);
  }
  shape.dims = readSizes(trimmed(rest), shape.global);
  return shape.dims == 0 ? std::nullopt : std::optional(shape);
}

static std::optional<ArgumentShape> readArgument(const std::string &text) {
  std::istringstream in(text);
  ArgumentShape shape;
  std::string first;
  in >> first;
  if (first == "buffer" || first == "local") {
    shape.kind =
        first == "local" ? ArgumentShape::Local : ArgumentShape::Buffer;
    std::string below;
    if (!(in >> shape.type >> shape.count))
      return std::nullopt;
    if (in >> below && (below != "below" || !(in >> shape.below)))
      return std::nullopt;
  } else {
    shape.type = first;
    if (!(in >> shape.value))
      return std::nullopt;
  }
  return sizeOfType(shape.type) == 0 ? std::nullopt : std::optional(shape);
}

static bool readArguments(const std::string &text, KernelPlan &plan) {
  std::istringstream in(text);
  for (std::string piece; std::getline(in, piece, ',');) {
    const std::optional<ArgumentShape> shape = readArgument(piece);
    if (!shape)
      return false;
    plan.arguments.push_back(*shape);
  }
  return true;
}

static bool readLine(const std::string &line, KernelFile &file) {
  std::istringstream in(line);
  std::string word, rest;
  in >> word;
  std::getline(in, rest);
  if (word == "options") {
    file.options = trimmed(rest);
    return true;
  }
  if (word == "partly") {
    file.partly = true;
    return true;
  }
  if (word == "kernel") {
    file.kernels.push_back({trimmed(rest), {}, {}});
    return true;
  }
  if (file.kernels.empty())
    return false;
  if (word == "arguments")
    return readArguments(rest, file.kernels.back());
  const std::optional<LaunchShape> launch = readLaunch(rest);
  if (word != "launch" || !launch)
    return false;
  file.kernels.back().launches.push_back(*launch);
  return true;
}

KernelFile readKernelFile(const std::string &source, std::string &error) {
  KernelFile file;
  std::istringstream in(source);
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("//!", 0) != 0)
      continue;
    if (!readLine(line.substr(3), file))
      error = line;
  }
  if (file.kernels.empty())
    error = "there is no line that names a kernel";
  return file;
}

/// The next pseudo-random number, the same on every system.
static std::uint64_t next(std::uint64_t &state) {
  state = state * 6364136223846793005ULL + 1442695040888963407ULL;
  return state >> 33;
}

template <typename Number>
static void put(std::vector<std::uint8_t> &bytes, size_t at, Number number) {
  std::memcpy(bytes.data() + at, &number, sizeof number);
}

/// Writes one number of a scalar type, or of a vector's elements.
static void putElement(std::vector<std::uint8_t> &bytes, size_t at,
                       const std::string &type, double number) {
  if (type.rfind("float", 0) == 0)
    put(bytes, at, static_cast<float>(number));
  else if (type == "double")
    put(bytes, at, number);
  else if (type == "long" || type == "ulong")
    put(bytes, at, static_cast<std::int64_t>(number));
  else if (type.rfind("int", 0) == 0 || type == "uint")
    put(bytes, at, static_cast<std::int32_t>(number));
  else if (type == "short" || type == "ushort")
    put(bytes, at, static_cast<std::int16_t>(number));
  else
    put(bytes, at, static_cast<std::uint8_t>(static_cast<int>(number)));
}

std::vector<std::uint8_t> contentsOf(const ArgumentShape &shape,
                                     std::uint64_t seed) {
  const size_t size = sizeOfType(shape.type);
  std::string scalar = shape.type;
  while (scalar.back() >= '0' && scalar.back() <= '9')
    scalar.pop_back();
  const size_t step = sizeOfType(scalar);
  std::vector<std::uint8_t> bytes(size * shape.count);
  const bool real = scalar == "float" || scalar == "double";
  std::uint64_t state = seed;
  for (size_t at = 0; at < bytes.size(); at += step) {
    double number = shape.value;
    if (shape.kind == ArgumentShape::Buffer)
      number =
          static_cast<double>(next(state) % static_cast<std::uint64_t>(
                                                shape.below * (real ? 64 : 1)));
    putElement(bytes, at, scalar,
               real && shape.kind == ArgumentShape::Buffer ? number / 64 - 1
                                                           : number);
  }
  return bytes;
}

} // namespace corvane::test
