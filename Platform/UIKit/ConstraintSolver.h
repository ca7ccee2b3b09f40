#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace flarebox {

/// Finds values for variables so that every constraint holds, or, where priorities allow it, is missed as little as
/// possible: the Cassowary algorithm. Lower priorities never outweigh higher ones. Constraints may come, go and change
/// their constant at any time; only what hangs on them is computed again. Answers depend on nothing but the calls made.
///
/// Between calls the constraints form a tableau: each row gives one basic symbol as a constant and a sum of parametric
/// ones. Parametric symbols stand at 0, so that a row's constant is the value of its basic symbol.
class ConstraintSolver {
public:
    using Variable = std::uint32_t;      ///< 0 is none
    using ConstraintId = std::uint32_t;  ///< 0 is none
    struct Term {
        Variable variable = 0;
        double coefficient = 0;
    };
    using Terms = std::vector<Term>;

    /// A constraint wants its sum, terms plus constant, to be 0. Each way of missing that is free, costs a priority
    /// (above 0, finite), or is forbidden.
    struct Cost {
        float above = 0, below = 0;
    };
    static constexpr float free = 0;
    static constexpr float forbidden = std::numeric_limits<float>::infinity();

    /// A constraint that was left out because it contradicts the forbidden sides of others.
    struct Conflict {
        ConstraintId offender = 0;
        std::vector<ConstraintId> others;
    };

    Variable addVariable();
    /// No constraint may mention it any more.
    void removeVariable(Variable variable);
    /// Of the last `solve`; 0 for a variable that nothing determines.
    double value(Variable variable) const;
    bool isDetermined(Variable variable) const { return symbols_[variable].row >= 0; }

    /// Whether the constraints would hold as well with another value. Of the last `solve`.
    bool isAmbiguous(Variable variable) const;

    /// Takes effect at the next `solve`. Each variable may stand in `terms` once.
    ConstraintId add(std::span<const Term> terms, double constant, Cost cost);
    void remove(ConstraintId constraint);
    void setConstant(ConstraintId constraint, double constant);
    bool contains(ConstraintId constraint) const;

    /// Brings all values up to date. Of constraints that contradict each other the one added or changed last is left
    /// out: it is then removed, and listed in the answer.
    std::vector<Conflict> solve();
    /// Variables whose value may have changed since the last call of this function.
    std::vector<Variable> takeChanged();

private:
    /// Variables and the symbols of our own are numbered together.
    using SymbolId = Variable;
    enum class Kind : std::uint8_t {
        Unused,
        External,  ///< a variable of the caller, of any sign
        Slack,     ///< how much a constraint's sum lies above or below 0; never negative
        Dummy,     ///< marks an equation that must hold; always 0 and never basic unless the equation is redundant
    };
    struct Symbol {
        Kind kind = Kind::Unused;
        bool isListedAsChanged = false;
        int row = -1;  ///< where it is basic
        ConstraintId constraint = 0;
        std::vector<int> column;  ///< rows in which it is parametric
    };
    struct Row {
        SymbolId basic = 0;
        double constant = 0;
        Terms terms;  ///< ascending by symbol
    };
    struct Constraint {
        bool isUsed = false, isInTableau = false;
        Cost cost;
        double constant = 0;
        std::uint64_t changed = 0;  ///< tells which of two was added or changed later
        SymbolId above = 0, below = 0, dummy = 0;
        Terms terms;
        double pendingConstant = 0;
        bool hasPendingConstant = false;
        SymbolId marker() const { return above ? above : below ? below : dummy; }
    };
    /// What is to be made as small as possible, all else of higher priority kept as it is.
    struct Objective {
        float priority = 0;
        Terms terms;
    };

    // ConstraintSolver.cpp
    void applyConstants();
    void shift(Constraint& constraint, double difference);
    void insertPending(std::vector<Conflict>& conflicts);
    bool insert(ConstraintId id, Conflict& conflict);
    void makeDeviations(ConstraintId id, Row& row);
    SymbolId chooseSubject(const Row& row, const Constraint& constraint) const;
    bool keepsFeasible(SymbolId symbol, double value) const;
    bool insertWithArtificial(Row& row, ConstraintId id, Conflict& conflict);
    void dropArtificial(SymbolId artificial, ConstraintId id);
    void takeOut(Constraint& constraint);
    int rowToLeave(const Constraint& constraint, SymbolId marker) const;
    void forgetSymbols(Constraint& constraint);
    void rebuild(std::vector<Conflict>& conflicts);
    std::vector<ConstraintId> requiredIn(const Row& row, ConstraintId except) const;

    // ConstraintSolver+Simplex.cpp
    bool optimize();
    bool restoreFeasibility();
    SymbolId entering() const;
    int leaving(SymbolId entering) const;
    SymbolId enteringForInfeasible(const Row& row) const;
    bool costsLess(const Term& one, const Term& other) const;
    void pivot(int row, SymbolId entering);
    void solveFor(Row& row, SymbolId symbol);
    void substitute(SymbolId symbol, const Row& row);
    void install(Row& row);
    void deleteRow(int row);
    void addScaled(Row& target, const Row& source, double factor, int targetIndex);
    void mergeTerms(Terms& target, const Terms& source, double factor, int targetIndex);
    void addTerm(Terms& terms, SymbolId symbol, double coefficient);
    Objective& objective(float priority);
    void addCost(SymbolId symbol, float priority, double factor);
    SymbolId newSymbol(Kind kind, ConstraintId constraint);
    void freeSymbol(SymbolId symbol);
    int newRow();
    void setRowConstant(int row, double constant);
    bool mayMoveFreely(SymbolId symbol) const;
    static double coefficient(const Terms& terms, SymbolId symbol);
    void listAsChanged(SymbolId symbol);

    /// Coefficients below it are what rounding left of 0.
    static constexpr double nothing = 1e-9;
    /// Rows count as feasible down to minus this; contradictions below a millionth of a point come from rounding.
    static constexpr double feasible = 1e-9, contradiction = 1e-6;

    std::vector<Symbol> symbols_{1};
    std::vector<SymbolId> unusedSymbols_;
    std::vector<Row> rows_;
    std::vector<int> unusedRows_;
    std::vector<Constraint> constraints_{1};
    std::vector<ConstraintId> unusedConstraints_;
    std::vector<Objective> objectives_;  ///< highest priority first
    std::vector<int> infeasible_;        ///< rows to look at; may name rows that are well
    std::vector<Variable> changed_;
    std::vector<ConstraintId> pendingInserts_, pendingConstants_;
    Row fresh_;
    Terms scratch_;
    std::uint64_t changeCount_ = 0;
    bool isOptimal_ = true;
};

}  // namespace flarebox
