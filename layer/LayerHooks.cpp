// Lists the layer's hooks and puts them into the dispatch tables.
//
//   application
//       |     LayerTable::application
//   tuning hooks     only while launches may be tuned: what runs when
//       |     LayerTable::upper
//   upper half       what the application meant, and what it is told
//       |     LayerTable::agent
//   agent            thirteen hooks of its own, the same without a layer
//       |     lower half's hooks, as the agent found them in its table
//   lower half       what the agent does, and what it is told
//       |     LayerTable::runtime
//   runtime
//
// Each part calls the next one through the table that is named between them;
// each may also call the runtime directly, past all others. An entry without a
// hook in a part leads straight to the next part that has one.
//
// The story of one call, clCreateKernel(program, "blur") of a program with a
// variant of that kernel, while launches may be tuned:
//
// 1. tuning::clCreateKernel calls the upper half, and will remember which
//    memory the new kernel is given.
// 2. upper::clCreateKernel makes a CallContext and calls the agent.
// 3. The agent's hook creates the application's kernel, and one for the
//    variant. Both calls meet lower::clCreateKernel, which has the runtime
//    create them, enters them into the table of kernels and tells the
//    CallContext of them.
// 4. The agent returns the application's kernel. The upper half reads in the
//    CallContext which others the agent keeps, so that they can be released
//    even if the agent forgets them.

#include "layer/LayerHooks.h"

#include "layer/CommandHooks.h"
#include "layer/CompanionSettings.h"
#include "layer/LowerHooks.h"
#include "layer/TuningHooks.h"
#include "layer/UpperHooks.h"

using namespace corvane::layer;

using Table = cl_icd_dispatch;

// Puts a call of the layer's into a table, unless there is none to replace.
template <typename Function>
static void replace(Function &entry, Function layerCall) {
  if (entry)
    entry = layerCall;
}

// Has the application call the runtime where the lower half's call is for the
// agent alone. Where the agent has a hook of its own the application gets that.
template <typename Function>
static void leadPast(Function &entry, Function lowerCall,
                     Function runtimesCall) {
  if (entry == lowerCall)
    entry = runtimesCall;
}

void corvane::layer::installLowerHooks(Table &table) {
  replace(table.clBuildProgram, lower::clBuildProgram);
  replace(table.clLinkProgram, lower::clLinkProgram);
  replace(table.clCreateKernel, lower::clCreateKernel);
  replace(table.clCreateKernelsInProgram, lower::clCreateKernelsInProgram);
  replace(table.clRetainKernel, lower::clRetainKernel);
  replace(table.clReleaseKernel, lower::clReleaseKernel);
  replace(table.clGetKernelInfo, lower::clGetKernelInfo);
  replace(table.clEnqueueNDRangeKernel, lower::clEnqueueNDRangeKernel);
  replace(table.clCreateUserEvent, lower::clCreateUserEvent);
  if (!companionsAreWanted())
    return;
  replace(table.clGetProgramInfo, lower::clGetProgramInfo);
  replace(table.clGetProgramBuildInfo, lower::clGetProgramBuildInfo);
  replace(table.clGetKernelArgInfo, lower::clGetKernelArgInfo);
}

void corvane::layer::installUpperHooks(Table &table) {
  replace(table.clCreateProgramWithSource, upper::clCreateProgramWithSource);
  replace(table.clCreateProgramWithBinary, upper::clCreateProgramWithBinary);
  replace(table.clCreateProgramWithBuiltInKernels,
          upper::clCreateProgramWithBuiltInKernels);
  replace(table.clCreateProgramWithIL, upper::clCreateProgramWithIL);
  replace(table.clRetainProgram, upper::clRetainProgram);
  replace(table.clReleaseProgram, upper::clReleaseProgram);
  replace(table.clBuildProgram, upper::clBuildProgram);
  replace(table.clGetProgramBuildInfo, upper::clGetProgramBuildInfo);
  replace(table.clLinkProgram, upper::clLinkProgram);
  replace(table.clGetProgramInfo, upper::clGetProgramInfo);

  replace(table.clCreateKernel, upper::clCreateKernel);
  replace(table.clCreateKernelsInProgram, upper::clCreateKernelsInProgram);
  replace(table.clCloneKernel, upper::clCloneKernel);
  replace(table.clReleaseKernel, upper::clReleaseKernel);
  replace(table.clSetKernelArgSVMPointer, upper::clSetKernelArgSVMPointer);
  replace(table.clSetKernelExecInfo, upper::clSetKernelExecInfo);
  replace(table.clEnqueueNDRangeKernel, upper::clEnqueueNDRangeKernel);
  leadPast(table.clGetKernelInfo, lower::clGetKernelInfo,
           runtime().clGetKernelInfo);
  leadPast(table.clCreateUserEvent, lower::clCreateUserEvent,
           runtime().clCreateUserEvent);

  replace(table.clCreateCommandQueue, upper::clCreateCommandQueue);
  replace(table.clCreateCommandQueueWithProperties,
          upper::clCreateCommandQueueWithProperties);
  replace(table.clRetainCommandQueue, upper::clRetainCommandQueue);
  replace(table.clReleaseCommandQueue, upper::clReleaseCommandQueue);
  replace(table.clGetCommandQueueInfo, upper::clGetCommandQueueInfo);
  replace(table.clGetEventProfilingInfo, upper::clGetEventProfilingInfo);
  replace(table.clCreateBufferWithProperties,
          upper::clCreateBufferWithProperties);
  if (!companionsAreWanted())
    return;
  replace(table.clGetContextInfo, upper::clGetContextInfo);
  leadPast(table.clGetKernelArgInfo, lower::clGetKernelArgInfo,
           runtime().clGetKernelArgInfo);
}

template <auto Entry, typename Kind> static void command(Table &table) {
  replace(table.*Entry, tuning::CommandHook<Entry, Kind>::call);
}

template <auto Entry> static void mapping(Table &table) {
  replace(table.*Entry, tuning::MapHook<Entry>::call);
}

template <auto Entry, bool mayBePart = true>
static void creation(Table &table) {
  replace(table.*Entry, tuning::CreationHook<Entry, mayBePart>::call);
}

// What commands work on: memory objects, and the kernels that are given them.
static void installObjectHooks(Table &table) {
  creation<&Table::clCreateBuffer, false>(table);
  creation<&Table::clCreateBufferWithProperties, false>(table);
  creation<&Table::clCreateSubBuffer>(table);
  creation<&Table::clCreateImage>(table);
  creation<&Table::clCreateImageWithProperties>(table);
  creation<&Table::clCreateImage2D>(table);
  creation<&Table::clCreateImage3D>(table);
  creation<&Table::clCreatePipe>(table);
  creation<&Table::clCreateFromGLBuffer>(table);
  creation<&Table::clCreateFromGLTexture>(table);
  creation<&Table::clCreateFromGLTexture2D>(table);
  creation<&Table::clCreateFromGLTexture3D>(table);
  creation<&Table::clCreateFromGLRenderbuffer>(table);
  creation<&Table::clCreateFromEGLImageKHR>(table);
  replace(table.clRetainMemObject, tuning::clRetainMemObject);
  replace(table.clReleaseMemObject, tuning::clReleaseMemObject);

  replace(table.clCreateKernel, tuning::clCreateKernel);
  replace(table.clCreateKernelsInProgram, tuning::clCreateKernelsInProgram);
  replace(table.clCloneKernel, tuning::clCloneKernel);
  replace(table.clRetainKernel, tuning::clRetainKernel);
  replace(table.clReleaseKernel, tuning::clReleaseKernel);
  replace(table.clSetKernelArg, tuning::clSetKernelArg);
}

static void installTransferHooks(Table &table) {
  using namespace tuning;
  command<&Table::clEnqueueReadBuffer, Transfer>(table);
  command<&Table::clEnqueueWriteBuffer, Transfer>(table);
  command<&Table::clEnqueueReadBufferRect, Transfer>(table);
  command<&Table::clEnqueueWriteBufferRect, Transfer>(table);
  command<&Table::clEnqueueReadImage, Transfer>(table);
  command<&Table::clEnqueueWriteImage, Transfer>(table);
  command<&Table::clEnqueueCopyBuffer, TwoObjects>(table);
  command<&Table::clEnqueueCopyBufferRect, TwoObjects>(table);
  command<&Table::clEnqueueCopyImage, TwoObjects>(table);
  command<&Table::clEnqueueCopyImageToBuffer, TwoObjects>(table);
  command<&Table::clEnqueueCopyBufferToImage, TwoObjects>(table);
  command<&Table::clEnqueueFillBuffer, OneObject>(table);
  command<&Table::clEnqueueFillImage, OneObject>(table);
  command<&Table::clEnqueueMigrateMemObjects, ObjectList>(table);
  mapping<&Table::clEnqueueMapBuffer>(table);
  mapping<&Table::clEnqueueMapImage>(table);
  replace(table.clEnqueueUnmapMemObject, tuning::clEnqueueUnmapMemObject);

  command<&Table::clEnqueueSVMFree, SharedFree>(table);
  command<&Table::clEnqueueSVMMemcpy, SharedTransfer>(table);
  command<&Table::clEnqueueSVMMemFill, Shared>(table);
  command<&Table::clEnqueueSVMMap, SharedTransfer>(table);
  command<&Table::clEnqueueSVMUnmap, Shared>(table);
  command<&Table::clEnqueueSVMMigrateMem, Shared>(table);
  command<&Table::clEnqueueAcquireGLObjects, ObjectList>(table);
  command<&Table::clEnqueueReleaseGLObjects, ObjectList>(table);
  command<&Table::clEnqueueAcquireEGLObjectsKHR, ObjectList>(table);
  command<&Table::clEnqueueReleaseEGLObjectsKHR, ObjectList>(table);
}

static void installRunAndOrderHooks(Table &table) {
  using namespace tuning;
  replace(table.clEnqueueNDRangeKernel, tuning::clEnqueueNDRangeKernel);
  command<&Table::clEnqueueTask, Task>(table);
  command<&Table::clEnqueueNativeKernel, NativeKernel>(table);
  command<&Table::clEnqueueMarkerWithWaitList, Marker>(table);
  command<&Table::clEnqueueBarrierWithWaitList, Barrier>(table);
  replace(table.clEnqueueMarker, tuning::clEnqueueMarker);
  replace(table.clEnqueueBarrier, tuning::clEnqueueBarrier);
  replace(table.clEnqueueWaitForEvents, tuning::clEnqueueWaitForEvents);
  replace(table.clFinish, tuning::clFinish);
}

// What the application asks while the layer holds events of commands.
static void installQuestionHooks(Table &table) {
  replace(table.clGetEventInfo, tuning::clGetEventInfo);
  replace(table.clGetCommandQueueInfo, tuning::clGetCommandQueueInfo);
  replace(table.clGetContextInfo, tuning::clGetContextInfo);
  replace(table.clGetMemObjectInfo, tuning::clGetMemObjectInfo);
  replace(table.clReleaseCommandQueue, tuning::clReleaseCommandQueue);
  replace(table.clReleaseContext, tuning::clReleaseContext);
}

void corvane::layer::installTuningHooks(Table &table, TuningMode mode) {
  if (mode == TuningMode::None)
    return;
  installObjectHooks(table);
  installTransferHooks(table);
  installRunAndOrderHooks(table);
  installQuestionHooks(table);
}
