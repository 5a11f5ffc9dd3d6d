// Writes what a test says about a program into the script of its builds.

#include "tests/support/ProgramScript.h"

#include "tests/support/FakeObjects.h"

#include <algorithm>

using namespace corvane::test;

ProgramScript &ProgramScript::kernel(const std::string &name,
                                     cl_uint argumentCount, KernelBody body) {
  program->builds.back().kernels.push_back(
      {name, argumentCount, std::move(body), {}});
  return *this;
}

ProgramScript &ProgramScript::source(const std::string &text) {
  program->source = text;
  return *this;
}

ProgramScript &ProgramScript::declares(cl_uint argument,
                                       const Declaration &declaration) {
  program->builds.back().kernels.back().declarations[argument] = declaration;
  return *this;
}

ProgramScript &ProgramScript::log(const std::string &text, unsigned device) {
  program->builds.back().logs[device] = text;
  return *this;
}

ProgramScript &ProgramScript::buildStatus(cl_int status) {
  program->builds.back().status = status;
  return *this;
}

ProgramScript &ProgramScript::thenBuilt() {
  program->builds.emplace_back();
  return *this;
}

ProgramScript &ProgramScript::devices(unsigned count) {
  program->deviceCount = count;
  return *this;
}

ProgramScript &ProgramScript::alreadyBuilt() {
  program->buildCount = 1;
  return *this;
}

cl_program ProgramScript::handle() const {
  return static_cast<cl_program>(program->handle);
}

const Build &Program::build(std::size_t number) const {
  return builds[std::min(number, builds.size()) - 1];
}

const Build *Program::latest() const {
  return buildCount == 0 ? nullptr : &build(buildCount);
}
