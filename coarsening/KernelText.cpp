// Writes what a variant has around the body: its signature, the ids of its
// lanes, and the test for the end of the range.
#include "coarsening/KernelText.h"

#include "coarsening/Helpers.h"
#include "coarsening/JamWriter.h"
#include "coarsening/SequentialWriter.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

namespace {

/// What a kernel and its helpers use, as far as it decides about mappings.
struct Traits {
  bool globalIdsOnly = true; ///< along the axes
  bool localMemory = false;
  bool barrier = false;
  bool meets() const { return localMemory || barrier; }
};

class VariantWriter {
public:
  VariantWriter(const clang::FunctionDecl &function, const Plan &wanted,
                const ProgramText &text, const Names &newNames,
                FunctionTable &functions)
      : kernel(function), plan(wanted), program(text), names(newNames),
        expressions(text.context(), functions, plan),
        facts(functions.factsOf(function)) {}

  KernelVariant write() {
    KernelVariant result;
    verdict.refuse(facts.refusal);
    if (!verdict.refused())
      checkIds();
    if (!verdict.refused())
      choose();
    if (!verdict.refused())
      result.text = assemble(result);
    if (program.sawForeignText())
      verdict.refuse(Reason::ForeignText);
    result.refusal = verdict.refusal();
    if (result.refusal)
      result.text.clear();
    return result;
  }

private:
  void checkIds() {
    for (const Axis &axis : plan.axes)
      if (llvm::none_of(facts.ids, [&](const IdUse &use) {
            return use.dim == axis.dim && expressions.differs(use);
          }))
        verdict.refuse(Reason::NoIds);
    traits.barrier = facts.barrier;
    for (const IdUse &use : facts.ids)
      if (plan.axisOf(use.dim) && (use.kind == BuiltinKind::LocalId ||
                                   use.kind == BuiltinKind::GroupId))
        traits.globalIdsOnly = false;
    for (const clang::ParmVarDecl *parameter : kernel.parameters()) {
      const clang::QualType type = parameter->getType();
      traits.localMemory |=
          type->isPointerType() && type->getPointeeType().getAddressSpace() ==
                                       clang::LangAS::opencl_local;
    }
    for (const clang::Stmt *statement : statementsOf(kernel))
      traits.localMemory |= declaresLocal(*statement);
  }

  /// Fixes the mapping, the required size and the name.
  void choose() {
    const bool simple = traits.globalIdsOnly && !traits.meets();
    const Mapping best = simple ? Mapping::Adjacent : Mapping::Block;
    if (plan.mapping == Mapping::Best)
      plan.mapping = best;
    if (plan.mode == Mode::Local)
      plan.mapping = Mapping::Block;
    const bool needsSimple =
        plan.mapping == Mapping::Adjacent || plan.mapping == Mapping::Stride;
    if (plan.mode != Mode::Local && needsSimple && !simple)
      verdict.refuse(Reason::LocalIds);
    if (plan.mode == Mode::Padded && plan.mapping == Mapping::Stride)
      verdict.refuse(Reason::LocalIds);
    const bool sequential = plan.method == Method::Sequential;
    if (sequential && plan.mode == Mode::Local && traits.meets())
      verdict.refuse(Reason::SequentialGroup);
    fixWorkGroupSize();
    const bool plainest =
        !sequential && (plan.mode == Mode::Local || plan.mapping == best);
    spec = specOf(plan, requiredSize.has_value(), plainest);
  }

  void fixWorkGroupSize() {
    const auto *required = kernel.getAttr<clang::ReqdWorkGroupSizeAttr>();
    if (kernel.hasAttr<clang::OpenCLIntelReqdSubGroupSizeAttr>())
      verdict.refuse(Reason::SubGroup, "intel_reqd_sub_group_size");
    if (!required)
      return;
    requiredSize = {required->getXDim(), required->getYDim(),
                    required->getZDim()};
    if (plan.mode != Mode::Local)
      return;
    for (const Axis &axis : plan.axes) {
      if ((*requiredSize)[axis.dim] % axis.factor != 0)
        verdict.refuse(Reason::WorkGroupSize);
      (*requiredSize)[axis.dim] /= axis.factor;
    }
  }

  std::string variantName() const {
    return kernel.getNameAsString() + "_coarsed_" + spec;
  }

  std::string signature() const {
    std::string words = "__kernel ";
    if (requiredSize)
      words += "__attribute__((reqd_work_group_size(" +
               std::to_string((*requiredSize)[0]) + ", " +
               std::to_string((*requiredSize)[1]) + ", " +
               std::to_string((*requiredSize)[2]) + "))) ";
    words += "void " + variantName() + "(";
    const Span name =
        program.spanOfName(kernel.getLocation(), kernel.getName());
    const unsigned open = program.find('(', name.end);
    std::string list;
    if (kernel.getNumParams() != 0)
      list = program.words({open + 1, program.closing(open)}).trim().str();
    if (plan.mode == Mode::Padded)
      list += (list.empty() ? "uint4 " : ", uint4 ") + names.fresh("counts");
    return words + list + ")\n";
  }

  /// The value of an id for the lane at `position` along its axis.
  std::string idValue(const IdUse &use, const std::string &position) const {
    const std::string dim = "(" + std::to_string(use.dim) + ")";
    const std::string factor = std::to_string(plan.axisOf(use.dim)->factor);
    const std::string offset = "get_global_offset" + dim;
    const std::string localId =
        "get_local_id" + dim + " + " + position + " * get_local_size" + dim;
    if (use.kind == BuiltinKind::LocalId)
      return localId;
    if (use.kind == BuiltinKind::GroupId)
      return "get_group_id" + dim + " * " + factor + " + " + position;
    if (plan.mode == Mode::Local)
      return "get_group_id" + dim + " * (get_local_size" + dim + " * " +
             factor + ") + " + localId + " + " + offset;
    switch (plan.mapping) {
    case Mapping::Stride:
      return "get_global_id" + dim + " + " + position + " * get_global_size" +
             dim;
    case Mapping::Block:
      // By the group's first work-item: groups of a launch without a local size
      // may differ in size.
      return "(get_global_id" + dim + " - get_local_id" + dim + " - " + offset +
             ") * " + factor + " + " + localId + " + " + offset;
    case Mapping::Best:
    case Mapping::Adjacent:
      break;
    }
    return "(get_global_id" + dim + " - " + offset + ") * " + factor + " + " +
           position + " + " + offset;
  }

  /// Declares the ids of the lanes, or of the loop over them.
  std::string declareIds(const LaneText::IdNeeds &needs, bool inLoop) const {
    std::string words;
    for (const auto &[use, digit] : needs) {
      if (digit.has_value() == inLoop)
        continue;
      const std::string position =
          digit ? std::to_string(*digit)
                : laneVariable(names, *plan.axisOf(use.dim));
      words += "const size_t " + names.id(use, digit) + " = " +
               idValue(use, position) + ";\n";
    }
    return words;
  }

  /// The numbers of work-groups of the kernel's launch. Of each the lower half
  /// was passed; the launched number of groups tells the rest.
  std::string declareCounts() const {
    std::string words;
    for (const Axis &axis : plan.axes) {
      const std::string dim = std::to_string(axis.dim);
      const std::string all =
          "get_num_groups(" + dim + ") * " + std::to_string(axis.factor);
      words += "const size_t " + countName(axis) + " = " + all + " - (uint)(" +
               all + " - " + names.fresh("counts") + ".s" + dim + ");\n";
    }
    return words;
  }
  std::string countName(const Axis &axis) const {
    return names.id({BuiltinKind::GroupCount, axis.dim}, std::nullopt);
  }

  /// Whether the lane at `position` is inside the kernel's launch.
  std::string insideAt(const Axis &axis, const std::string &position) const {
    const std::string dim = std::to_string(axis.dim);
    if (plan.mapping == Mapping::Block)
      return idValue({BuiltinKind::GroupId, axis.dim}, position) + " < " +
             countName(axis);
    return idValue({BuiltinKind::GlobalId, axis.dim}, position) +
           " - get_global_offset(" + dim + ") < " + countName(axis) +
           " * get_local_size(" + dim + ")";
  }
  std::string allInside() const {
    std::string words;
    for (const Axis &axis : plan.axes)
      words += (words.empty() ? "" : " && ") +
               insideAt(axis, std::to_string(axis.factor - 1));
    return words;
  }

  std::string assemble(KernelVariant &result) {
    result.spec = spec;
    const Variance variance(kernel, expressions, plan);
    const bool jams = plan.method == Method::Jam;
    if (jams) {
      verdict.refuse(variance.refusal());
      result.analysis = variance.describe();
      if (verdict.refused())
        return "";
    }
    const std::string suffix = kernel.getNameAsString() + "_" + spec;
    Helpers helpers(names, expressions, plan, suffix);
    LaneText lanes(program, names, plan, variance, expressions, helpers);
    unsigned labels = 0;
    JamWriter jam(kernel, variance, plan, lanes, labels);

    std::string body = jams ? jam.localMemory() : localMemory(lanes);
    if (plan.mode == Mode::Padded)
      body += declareCounts();
    const std::string together = jams ? jam.body() : "";
    const auto sequential = [&] {
      return writeSequential(
          kernel, plan, lanes, labels, traits.meets(),
          [&] { return declareIds(lanes.ids(), /*inLoop=*/true); },
          [&](unsigned axis) { return limitOf(plan.axes[axis]); });
    };
    const std::string alone =
        !jams || plan.mode == Mode::Padded ? sequential() : "";
    body += declareIds(lanes.ids(), /*inLoop=*/false);
    if (!jams)
      body += alone;
    else if (plan.mode == Mode::Padded)
      body += "if (" + allInside() + ") {\n" + together + "} else {\n" + alone +
              "}\n";
    else
      body += together;
    verdict.refuse(lanes.refusal());
    return helpers.text() + signature() + "{\n" + body + "}\n";
  }

  /// One declaration of local memory for all lanes: they use it in turn.
  std::string localMemory(LaneText &lanes) const {
    std::string words;
    for (const clang::Stmt *statement : statementsOf(kernel))
      if (declaresLocal(*statement))
        words += lanes.statement(*statement, {Voice::Loop, 0, nullptr, ""});
    return words;
  }

  std::string limitOf(const Axis &axis) const {
    if (plan.mode != Mode::Padded)
      return "";
    return insideAt(axis, laneVariable(names, axis));
  }

  const clang::FunctionDecl &kernel;
  Plan plan;
  const ProgramText &program;
  const Names &names;
  Expressions expressions;
  const FunctionFacts &facts;
  Traits traits;
  Verdict verdict;
  std::string spec;
  std::optional<std::array<unsigned, 3>> requiredSize;
};

} // namespace

KernelVariant makeVariant(const clang::FunctionDecl &kernel, const Plan &plan,
                          const ProgramText &program, const Names &names,
                          FunctionTable &functions) {
  return VariantWriter(kernel, plan, program, names, functions).write();
}

} // namespace corvane::coarsening
