// Reads a profile; the first thing that is wrong is the error.

#include "results/profile/ProfileFile.h"

#include "results/runs/Json.h"
#include "results/runs/RunReader.h"
#include "results/runs/SizeFields.h"

using namespace corvane;

// Calls \p readElement with the fields of each element of a list. What is wrong
// with an element is told with its place.
template <typename Read>
static void readList(JsonFields &fields, const char *key, Read readElement) {
  std::size_t index = 0;
  for (const JsonValue &value : fields.list(key)) {
    JsonFields inner(value.asObject());
    readElement(inner);
    if (!inner.problem().empty()) {
      fields.complain(std::string(key) + "[" + std::to_string(index) +
                      "]: " + inner.problem());
      return;
    }
    ++index;
  }
}

static ProfileDevice readDevice(JsonFields &fields) {
  return {fields.text("name"), fields.text("vendor"), fields.text("driver")};
}

// Calls \p readValue with the version and the value of each field of an object.
template <typename Read>
static void readByVersion(JsonFields &fields, const char *key,
                          ProfileEntry &entry, Read readValue) {
  const JsonObject *const object = fields.object(key);
  if (!object)
    return;
  for (const auto &[name, value] : *object)
    if (!readValue(entry.versions[versionFromFile(name)], value))
      fields.complain("\"" + std::string(key) + "\" of \"" + name +
                      "\" is not what it should be");
}

static bool readCheck(ProfileVersion &version, const JsonValue &value) {
  const std::string *const text = value.asText();
  if (!text)
    return false;
  for (Agreement check : {Agreement::Unknown, Agreement::Equal,
                          Agreement::WithinBound, Agreement::Different})
    if (*text == agreementText(check)) {
      version.check = check;
      return true;
    }
  return false;
}

static void readVersions(JsonFields &fields, ProfileEntry &entry) {
  readByVersion(fields, "medians", entry,
                [](ProfileVersion &version, const JsonValue &value) {
                  const std::optional<double> median = finiteAmount(value);
                  version.median = median.value_or(0.0);
                  return median.has_value();
                });
  readByVersion(fields, "samples", entry,
                [](ProfileVersion &version, const JsonValue &value) {
                  const std::optional<std::uint64_t> count = wholeNumber(value);
                  version.samples = count.value_or(0);
                  return count.has_value();
                });
  readByVersion(fields, "check", entry, readCheck);
}

static std::optional<RatioInterval> readInterval(JsonFields &fields) {
  if (!fields.has("interval"))
    return std::nullopt;
  const llvm::ArrayRef<JsonValue> list = fields.list("interval");
  if (list.size() == 2) {
    const std::optional<double> low = finiteAmount(list[0]);
    const std::optional<double> high = finiteAmount(list[1]);
    if (low && high)
      return RatioInterval{*low, *high};
  }
  fields.complain("\"interval\" is no pair of numbers");
  return std::nullopt;
}

// An index into a list with \p count elements.
static std::size_t readIndex(JsonFields &fields, const char *key,
                             std::size_t count) {
  const std::uint64_t index = fields.whole(key);
  if (index < count)
    return static_cast<std::size_t>(index);
  fields.complain("\"" + std::string(key) + "\" is " + std::to_string(index) +
                  ", and there are " + std::to_string(count));
  return 0;
}

static ProfileEntry readEntry(JsonFields &fields, const Profile &profile) {
  ProfileEntry entry;
  entry.kernel = fields.text("kernel");
  if (fields.has("use"))
    entry.use = fields.text("use");
  entry.sizes = readSizes(fields);
  entry.device = readIndex(fields, "device", profile.devices.size());
  entry.program = readIndex(fields, "program", profile.programs.size());
  readVersions(fields, entry);
  entry.interval = readInterval(fields);
  return entry;
}

static void checkFormat(JsonFields &fields) {
  if (fields.text("format") != "corvane-profile")
    fields.complain("\"format\" is not \"corvane-profile\"");
  const std::uint64_t version = fields.whole("version");
  if (version == 0 || version > profileFormatVersion)
    fields.complain("format version " + std::to_string(version) +
                    " is not known here; this is version " +
                    std::to_string(profileFormatVersion));
}

llvm::Expected<Profile> corvane::readProfile(llvm::StringRef text) {
  llvm::Expected<JsonValue> value = parseJson(text);
  if (!value)
    return value.takeError();

  JsonFields fields(value->asObject());
  checkFormat(fields);
  Profile profile;
  if (fields.problem().empty()) {
    readList(fields, "devices", [&](JsonFields &inner) {
      profile.devices.push_back(readDevice(inner));
    });
    readList(fields, "programs", [&](JsonFields &inner) {
      profile.programs.push_back(inner.text("hash"));
    });
    readList(fields, "entries", [&](JsonFields &inner) {
      profile.entries.push_back(readEntry(inner, profile));
    });
  }
  if (!fields.problem().empty())
    return llvm::make_error<llvm::StringError>(fields.problem(),
                                               llvm::inconvertibleErrorCode());
  return profile;
}
