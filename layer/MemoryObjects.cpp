// Follows memory objects and their mapped regions, and leads buffers to the
// agent.

#include "layer/MemoryObjects.h"

#include "layer/ObjectTable.h"
#include "layer/TuningHooks.h"
#include "layer/UpperHooks.h"

#include <algorithm>

using namespace corvane::layer;

namespace {
struct MemoryInfo {
  cl_mem whole = nullptr; ///< what it is a part of, or itself
};

/// Regions that the host has not given back.
struct Maps {
  struct Count {
    cl_mem whole;
    unsigned regions;
  };
  std::mutex lock;
  std::unordered_map<cl_mem, Count> byObject;
};
} // namespace

static auto &objects() {
  return neverDestroyed<ObjectTable<cl_mem, MemoryInfo>>();
}

static Maps &maps() { return neverDestroyed<Maps>(); }

static cl_mem wholeOf(cl_mem object) {
  const cl_mem known = objects().read(object).whole;
  return known ? known : object;
}

void TouchedMemory::add(cl_mem object) {
  if (object)
    objects.push_back(wholeOf(object));
}

bool TouchedMemory::overlaps(const TouchedMemory &other) const {
  if (anything || other.anything)
    return true;
  return std::any_of(objects.begin(), objects.end(), [&](cl_mem object) {
    return std::find(other.objects.begin(), other.objects.end(), object) !=
           other.objects.end();
  });
}

bool corvane::layer::isMemoryObject(cl_mem handle) {
  return handle && objects().has(handle);
}

bool corvane::layer::isMapped(const TouchedMemory &memory) {
  Maps &all = maps();
  std::lock_guard<std::mutex> guard(all.lock);
  return std::any_of(
      all.byObject.begin(), all.byObject.end(), [&](const auto &entry) {
        return std::find(memory.objects.begin(), memory.objects.end(),
                         entry.second.whole) != memory.objects.end();
      });
}

void corvane::layer::rememberMap(cl_mem object) {
  const cl_mem whole = wholeOf(object);
  Maps &all = maps();
  std::lock_guard<std::mutex> guard(all.lock);
  ++all.byObject.insert({object, {whole, 0}}).first->second.regions;
}

void corvane::layer::rememberUnmap(cl_mem object) {
  Maps &all = maps();
  std::lock_guard<std::mutex> guard(all.lock);
  const auto found = all.byObject.find(object);
  if (found != all.byObject.end() && --found->second.regions == 0)
    all.byObject.erase(found);
}

static void forgetMaps(cl_mem object) {
  Maps &all = maps();
  std::lock_guard<std::mutex> guard(all.lock);
  all.byObject.erase(object);
}

// A runtime that does not tell has no object that is part of another.
static cl_mem askForParent(cl_mem object) {
  cl_mem parent = nullptr;
  if (runtime().clGetMemObjectInfo(object, CL_MEM_ASSOCIATED_MEMOBJECT,
                                   sizeof(cl_mem), &parent,
                                   nullptr) != CL_SUCCESS)
    return nullptr;
  return parent;
}

void corvane::layer::enterMemoryObject(cl_mem object, bool mayBePart) {
  const cl_mem parent = mayBePart ? askForParent(object) : nullptr;
  forgetMaps(object);
  objects().insert(object, {parent ? wholeOf(parent) : object});
}

cl_int CL_API_CALL tuning::clRetainMemObject(cl_mem object) {
  const cl_int status = upperHalf().clRetainMemObject(object);
  if (status == CL_SUCCESS)
    objects().retain(object);
  return status;
}

cl_int CL_API_CALL tuning::clReleaseMemObject(cl_mem object) {
  if (objects().release(object) == Release::Last)
    forgetMaps(object);
  return upperHalf().clReleaseMemObject(object);
}

// The agent hooks what OpenCL 1.2 has. A buffer that the newer call makes
// without properties is made by that older call; one with properties is not the
// agent's business.
cl_mem CL_API_CALL upper::clCreateBufferWithProperties(
    cl_context context, const cl_mem_properties *properties, cl_mem_flags flags,
    size_t size, void *hostPtr, cl_int *errcodeRet) {
  if (!properties || *properties == 0)
    return agent().clCreateBuffer(context, flags, size, hostPtr, errcodeRet);
  return runtime().clCreateBufferWithProperties(context, properties, flags,
                                                size, hostPtr, errcodeRet);
}
