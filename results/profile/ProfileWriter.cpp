// Writes a profile, an entry a line, so that people can compare two of them.

#include "results/profile/ProfileFile.h"

#include "results/runs/Json.h"
#include "results/runs/RunWriter.h"
#include "results/runs/SizeFields.h"

#include "llvm/Support/raw_ostream.h"

using namespace corvane;
namespace json = llvm::json;

const char *corvane::agreementText(Agreement check) {
  switch (check) {
  case Agreement::Unknown:
    return "not checked";
  case Agreement::Equal:
    return "equal";
  case Agreement::WithinBound:
    return "within bound";
  case Agreement::Different:
    return "different";
  }
  return "";
}

// An object with a field for each version.
template <typename Write>
static void writeVersions(json::OStream &out, llvm::StringRef key,
                          const ProfileEntry &entry, Write writeValue) {
  out.attributeObject(key, [&] {
    for (const auto &[name, version] : entry.versions) {
      out.attributeBegin(json::fixUTF8(versionInFile(name)));
      writeValue(version);
      out.attributeEnd();
    }
  });
}

static void writeInterval(json::OStream &out, const ProfileEntry &entry) {
  out.attributeBegin("interval");
  if (entry.interval)
    out.array([&] {
      writeNumber(out, entry.interval->low);
      writeNumber(out, entry.interval->high);
    });
  else
    out.value(nullptr);
  out.attributeEnd();
}

static void writeEntry(json::OStream &out, const ProfileEntry &entry) {
  out.object([&] {
    writeTextField(out, "kernel", entry.kernel);
    if (entry.use)
      writeTextField(out, "use", *entry.use);
    else
      out.attribute("use", nullptr);
    writeSizes(out, entry.sizes);
    out.attribute("device", json::Value(std::uint64_t(entry.device)));
    out.attribute("program", json::Value(std::uint64_t(entry.program)));
    writeVersions(out, "medians", entry, [&](const ProfileVersion &version) {
      writeNumber(out, version.median);
    });
    writeInterval(out, entry);
    writeVersions(out, "samples", entry, [&](const ProfileVersion &version) {
      out.value(json::Value(version.samples));
    });
    writeVersions(out, "check", entry, [&](const ProfileVersion &version) {
      out.value(agreementText(version.check));
    });
  });
}

static void writeDevice(json::OStream &out, const ProfileDevice &device) {
  out.object([&] {
    writeTextField(out, "name", device.name);
    writeTextField(out, "vendor", device.vendor);
    writeTextField(out, "driver", device.driver);
  });
}

static void writeProgram(json::OStream &out, const std::string &hash) {
  out.object([&] { writeTextField(out, "hash", hash); });
}

// A list with an element a line.
template <typename Elements, typename Write>
static void writeLines(llvm::raw_ostream &stream, const char *key,
                       const Elements &elements, Write writeElement) {
  stream << ",\n\"" << key << "\": [";
  const char *before = "\n  ";
  for (const auto &element : elements) {
    stream << before;
    json::OStream out(stream);
    writeElement(out, element);
    before = ",\n  ";
  }
  stream << "\n]";
}

std::string corvane::profileText(const Profile &profile) {
  std::string text;
  llvm::raw_string_ostream stream(text);
  stream << "{\n\"format\": \"corvane-profile\",\n\"version\": "
         << profileFormatVersion;
  writeLines(stream, "devices", profile.devices, writeDevice);
  writeLines(stream, "programs", profile.programs, writeProgram);
  writeLines(stream, "entries", profile.entries, writeEntry);
  stream << "\n}\n";
  stream.flush();
  return text;
}
