// Writes pieces of a kernel for one lane, or for all lanes together.
#pragma once

#include "coarsening/Plan.h"
#include "coarsening/ProgramText.h"
#include "coarsening/Variance.h"

namespace corvane::coarsening {

/// Names that the variants of one program add. All contain letters that the
/// program does not use.
class Names {
public:
  explicit Names(std::string letters) : mark(std::move(letters)) {}

  /// A variable that each lane has for itself.
  std::string own(llvm::StringRef name, unsigned lane) const {
    return (name + "_" + mark + llvm::Twine(lane)).str();
  }
  /// A lane's copy of a shared variable.
  std::string shadow(llvm::StringRef name) const {
    return (name + "_" + mark).str();
  }
  /// An id. Lanes with the same digit along the axis have the same; in a loop
  /// over the lanes there is but one name.
  std::string id(const IdUse &use, std::optional<unsigned> digit) const;
  std::string fresh(llvm::StringRef what) const {
    return mark + "_" + what.str();
  }
  std::string numbered(llvm::StringRef what, unsigned number) const {
    return fresh(what) + std::to_string(number);
  }

private:
  std::string mark;
};

/// For whom a piece of text is written.
struct Voice {
  enum Kind {
    Shared, ///< all lanes at once
    Lane,   ///< one of several copies
    Loop,   ///< the body of a loop over the lanes, or a function they call
  };
  Kind kind = Shared;
  unsigned lane = 0;
  /// Shared variables of which each copy has one of its own, or null.
  const std::set<const clang::VarDecl *> *shadows = nullptr;
  /// The label at the end of the copy; empty where `return` stays.
  std::string end;

  static Voice of(unsigned lane) { return {Lane, lane, nullptr, ""}; }
};

class Helpers;

/// Writes pieces of one kernel for one plan.
class LaneText {
public:
  LaneText(const ProgramText &text, const Names &names, const Plan &plan,
           const Variance &variance, Expressions &expressions,
           Helpers &helpers);

  /// The statement's words with a semicolon where one belongs.
  std::string statement(const clang::Stmt &statement, const Voice &voice);
  std::string expression(const clang::Expr &expr, const Voice &voice);
  /// The words of `span`, which lies in `node`.
  std::string piece(Span span, const clang::Stmt &node, const Voice &voice);

  /// The variables of a declaration one by one, in order.
  struct Declarator {
    const clang::VarDecl *variable;
    Span span; ///< with the initialiser
  };
  struct Declaration {
    Span specifiers;
    std::vector<Declarator> declarators;
  };
  Declaration split(const clang::DeclStmt &declaration);
  std::string declare(const Declaration &declaration,
                      const Declarator &declarator, const Voice &voice);
  /// A variable of another name with the value that a shared one has now.
  std::string copyOf(const clang::VarDecl &variable, llvm::StringRef name);

  std::string nameOf(const clang::VarDecl &variable, const Voice &voice) const;

  /// Whether a `return` became a jump to the end since this was last asked.
  bool tookEnd() { return std::exchange(endUsed, false); }
  /// The ids that the text asks for, with their digits along the axes; an id in
  /// a loop over the lanes has no digit.
  using IdNeeds = std::set<std::pair<IdUse, std::optional<unsigned>>>;
  const IdNeeds &ids() const { return needs; }
  bool usesGroupCounts() const { return countsUsed; }
  const std::optional<Refusal> &refusal() const { return verdict.refusal(); }

  const ProgramText &program() const { return text; }
  const Names &newNames() const { return names; }

private:
  friend class Helpers;

  void editTree(const clang::Stmt *root, const Voice &voice,
                std::vector<Edit> &edits);
  bool editNode(const clang::Stmt &node, const Voice &voice,
                std::vector<Edit> &edits);
  bool editCall(const clang::CallExpr &call, const Voice &voice,
                std::vector<Edit> &edits);
  void editHelperCall(const clang::CallExpr &call,
                      const clang::FunctionDecl &called, const Voice &voice,
                      std::vector<Edit> &edits);
  bool editGlobalId(const clang::Expr &expr, unsigned dim, const Voice &voice,
                    std::vector<Edit> &edits);
  void editDeclaration(const clang::DeclStmt &declaration, const Voice &voice,
                       std::vector<Edit> &edits);
  std::string idText(const IdUse &use, const Voice &voice);
  std::string need(const IdUse &use, const Voice &voice);
  void dropRestrict(Span span, std::vector<Edit> &edits) const;
  void foldSizes(const clang::VarDecl &variable,
                 std::vector<Edit> &edits) const;
  Span declaratorOf(const clang::VarDecl &variable) const;

  const ProgramText &text;
  const Names &names;
  const Plan &plan;
  const Variance &variance;
  Expressions &expressions;
  Helpers &helpers;
  Verdict verdict;
  IdNeeds needs;
  bool endUsed = false;
  bool countsUsed = false;
};

} // namespace corvane::coarsening
