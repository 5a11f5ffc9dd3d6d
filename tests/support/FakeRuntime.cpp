// Makes the scripted runtime and its objects.

#include "tests/support/FakeRuntime.h"

#include "agent/Environment.h"

#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

FakeRuntime::FakeRuntime() : agentObject(world) {
  for (const Setting &setting : settings)
    environment.emplace_back(setting.name, nullptr);
}

FakeRuntime::~FakeRuntime() {
  for (const std::string &misuse : misuses())
    ADD_FAILURE() << misuse;
}

cl_context FakeRuntime::context() {
  Lock guard(world.lock);
  if (!theContext)
    theContext = world.objects.add<cl_context>(std::make_shared<Context>());
  return theContext;
}

cl_command_queue FakeRuntime::queue() {
  Lock guard(world.lock);
  if (!theQueue) {
    auto queue = std::make_shared<Queue>();
    queue->properties = CL_QUEUE_PROFILING_ENABLE;
    queue->context = context();
    queue->device = device();
    theQueue = world.objects.add<cl_command_queue>(queue);
  }
  return theQueue;
}

cl_mem FakeRuntime::addBuffer(std::size_t size, cl_mem_flags flags) {
  Lock guard(world.lock);
  auto buffer = std::make_shared<Buffer>();
  buffer->size = size;
  buffer->flags = flags;
  buffer->bytes.resize(size);
  return world.objects.add<cl_mem>(buffer);
}

cl_event FakeRuntime::addEvent() {
  Lock guard(world.lock);
  auto event = std::make_shared<Event>();
  event->isUsers = true;
  return world.objects.add<cl_event>(event);
}

ProgramScript FakeRuntime::addProgram() {
  Lock guard(world.lock);
  auto program = std::make_shared<Program>();
  world.objects.add<cl_program>(program);
  return ProgramScript(program);
}

// A program without references before the runtime hands it out.
static ProgramScript prepare(World &world,
                             std::deque<std::shared_ptr<Program>> &prepared) {
  Lock guard(world.lock);
  auto program = std::make_shared<Program>();
  program->references = 0;
  world.objects.add<cl_program>(program);
  prepared.push_back(program);
  return ProgramScript(program);
}

ProgramScript FakeRuntime::linkMakes() {
  return prepare(world, world.nextLinked);
}

ProgramScript FakeRuntime::sourceMakes() {
  return prepare(world, world.nextFromSource);
}

std::vector<unsigned char> FakeRuntime::bytes(cl_mem buffer) {
  Lock guard(world.lock);
  return world.objects.find(buffer)->bytes;
}

std::shared_ptr<const std::vector<unsigned char>>
FakeRuntime::look(cl_mem buffer) {
  Lock guard(world.lock);
  const std::shared_ptr<Buffer> found = world.objects.find(buffer);
  return {found, &found->bytes};
}

void FakeRuntime::setBytes(cl_mem buffer,
                           const std::vector<unsigned char> &bytes) {
  Lock guard(world.lock);
  world.objects.find(buffer)->bytes = bytes;
}

std::vector<std::string> FakeRuntime::alive(const std::string &kind) {
  Lock guard(world.lock);
  return world.objects.alive(kind);
}

std::vector<std::string> FakeRuntime::misuses() {
  Lock guard(world.lock);
  std::vector<std::string> found;
  found.swap(world.objects.misuses);
  return found;
}

void FakeRuntime::recycleHandles() {
  Lock guard(world.lock);
  world.objects.recycleHandles = true;
}
