// Clones of the program's functions that ask for ids, for one variant.
#pragma once

#include "coarsening/LaneText.h"

namespace corvane::coarsening {

/// A function that asks for ids of its own is cloned: the clone gets those that
/// the variant rewrites as its first arguments.
class Helpers {
public:
  /// `suffix` makes the clones' names differ from those of other variants.
  Helpers(const Names &newNames, Expressions &all, const Plan &wanted,
          std::string suffix)
      : names(newNames), expressions(all), plan(wanted),
        ending(std::move(suffix)) {}

  /// The first parameters of the function's clone, which the function itself
  /// lacks: ids, and numbers of work-groups.
  std::vector<IdUse> parametersOf(const clang::FunctionDecl &function) const;
  /// The name of the function's clone, which is written when it is first asked
  /// for.
  std::string cloneOf(const clang::FunctionDecl &function, LaneText &lanes);
  /// All clones, each before the ones that call it.
  const std::string &text() const { return clones; }

private:
  std::string write(const clang::FunctionDecl &function,
                    const std::string &name, LaneText &lanes) const;

  const Names &names;
  Expressions &expressions;
  const Plan &plan;
  const std::string ending;
  std::map<const clang::FunctionDecl *, std::string> cloned;
  std::string clones;
};

} // namespace corvane::coarsening
