// Follows the lives of memory objects and of the regions that are mapped.

#include "layer/MemoryObjects.h"

#include "layer/ObjectTable.h"

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

void corvane::layer::noteMap(cl_mem object) {
  const cl_mem whole = wholeOf(object);
  Maps &all = maps();
  std::lock_guard<std::mutex> guard(all.lock);
  ++all.byObject.insert({object, {whole, 0}}).first->second.regions;
}

void corvane::layer::noteUnmap(cl_mem object) {
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

static const cl_icd_dispatch *next = nullptr;

// A runtime that does not tell has no object that is part of another.
static cl_mem askForParent(cl_mem object) {
  cl_mem parent = nullptr;
  if (runtime().clGetMemObjectInfo(object, CL_MEM_ASSOCIATED_MEMOBJECT,
                                   sizeof(cl_mem), &parent,
                                   nullptr) != CL_SUCCESS)
    return nullptr;
  return parent;
}

static void enter(cl_mem object, bool mayBePart) {
  const cl_mem parent = mayBePart ? askForParent(object) : nullptr;
  forgetMaps(object);
  objects().insert(object, {parent ? wholeOf(parent) : object});
}

namespace {
/// A call that creates a memory object, whatever its arguments are.
template <auto Entry, bool mayBePart, typename Function> struct Creation;
template <auto Entry, bool mayBePart, typename... Args>
struct Creation<Entry, mayBePart, cl_mem(CL_API_CALL *)(Args...)> {
  static cl_mem CL_API_CALL call(Args... args) {
    cl_mem object = (next->*Entry)(args...);
    if (object)
      enter(object, mayBePart);
    return object;
  }
};
} // namespace

template <auto Entry, bool mayBePart = true>
static void followCreation(cl_icd_dispatch &calls) {
  using Function = std::remove_reference_t<decltype(calls.*Entry)>;
  replace(calls.*Entry, &Creation<Entry, mayBePart, Function>::call);
}

static cl_int CL_API_CALL retain(cl_mem object) {
  const cl_int status = next->clRetainMemObject(object);
  if (status == CL_SUCCESS)
    objects().retain(object);
  return status;
}

static cl_int CL_API_CALL release(cl_mem object) {
  if (objects().release(object) == Release::Last)
    forgetMaps(object);
  return next->clReleaseMemObject(object);
}

void corvane::layer::followMemoryObjects(cl_icd_dispatch &calls,
                                         const cl_icd_dispatch &nextCalls) {
  next = &nextCalls;
  using Calls = cl_icd_dispatch;
  followCreation<&Calls::clCreateBuffer, false>(calls);
  followCreation<&Calls::clCreateBufferWithProperties, false>(calls);
  followCreation<&Calls::clCreateSubBuffer>(calls);
  followCreation<&Calls::clCreateImage>(calls);
  followCreation<&Calls::clCreateImageWithProperties>(calls);
  followCreation<&Calls::clCreateImage2D>(calls);
  followCreation<&Calls::clCreateImage3D>(calls);
  followCreation<&Calls::clCreatePipe>(calls);
  followCreation<&Calls::clCreateFromGLBuffer>(calls);
  followCreation<&Calls::clCreateFromGLTexture>(calls);
  followCreation<&Calls::clCreateFromGLTexture2D>(calls);
  followCreation<&Calls::clCreateFromGLTexture3D>(calls);
  followCreation<&Calls::clCreateFromGLRenderbuffer>(calls);
  followCreation<&Calls::clCreateFromEGLImageKHR>(calls);
  replace(calls.clRetainMemObject, &retain);
  replace(calls.clReleaseMemObject, &release);
}
