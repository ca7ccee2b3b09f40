#include <UIKit/ConstraintSolver.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace flarebox {
namespace {

bool isCost(float priority) {
    return priority > 0 && std::isfinite(priority);
}

}  // namespace

ConstraintSolver::Variable ConstraintSolver::addVariable() {
    return newSymbol(Kind::External, 0);
}

void ConstraintSolver::removeVariable(Variable variable) {
    if (symbols_[variable].row >= 0) deleteRow(symbols_[variable].row);
    freeSymbol(variable);
}

double ConstraintSolver::value(Variable variable) const {
    const int row = symbols_[variable].row;
    return row >= 0 ? rows_[static_cast<std::size_t>(row)].constant : 0;
}

bool ConstraintSolver::isAmbiguous(Variable variable) const {
    const int row = symbols_[variable].row;
    return row < 0 || std::ranges::any_of(rows_[static_cast<std::size_t>(row)].terms,
                                          [this](const Term& term) { return mayMoveFreely(term.variable); });
}

/// Whether the parametric symbol could have another value than 0 at no cost.
bool ConstraintSolver::mayMoveFreely(SymbolId symbol) const {
    if (symbols_[symbol].kind == Kind::External) return true;
    return symbols_[symbol].kind == Kind::Slack && std::ranges::all_of(objectives_, [symbol](const Objective& each) {
               return std::abs(coefficient(each.terms, symbol)) < nothing;
           });
}

ConstraintSolver::ConstraintId ConstraintSolver::add(std::span<const Term> terms, double constant, Cost cost) {
    ConstraintId id = static_cast<ConstraintId>(constraints_.size());
    if (unusedConstraints_.empty()) {
        constraints_.emplace_back();
    } else {
        id = unusedConstraints_.back();
        unusedConstraints_.pop_back();
    }
    Constraint& constraint = constraints_[id];
    constraint.isUsed = true;
    constraint.cost = cost;
    constraint.constant = constant;
    constraint.changed = ++changeCount_;
    constraint.terms.assign(terms.begin(), terms.end());
    pendingInserts_.push_back(id);
    return id;
}

bool ConstraintSolver::contains(ConstraintId constraint) const {
    return constraint != 0 && constraint < constraints_.size() && constraints_[constraint].isUsed;
}

void ConstraintSolver::remove(ConstraintId id) {
    if (!contains(id)) return;
    Constraint& constraint = constraints_[id];
    if (constraint.isInTableau)
        takeOut(constraint);
    else
        std::erase(pendingInserts_, id);
    if (constraint.hasPendingConstant) std::erase(pendingConstants_, id);
    Terms terms = std::move(constraint.terms);
    terms.clear();
    constraint = Constraint();
    constraint.terms = std::move(terms);
    unusedConstraints_.push_back(id);
}

void ConstraintSolver::setConstant(ConstraintId id, double constant) {
    if (!contains(id)) return;
    Constraint& constraint = constraints_[id];
    if (constraint.isInTableau && !constraint.hasPendingConstant) {
        constraint.hasPendingConstant = true;
        pendingConstants_.push_back(id);
    }
    constraint.pendingConstant = constant;
    if (!constraint.isInTableau) constraint.constant = constant;
    constraint.changed = ++changeCount_;
}

std::vector<ConstraintSolver::Conflict> ConstraintSolver::solve() {
    std::vector<Conflict> conflicts;
    // Constants are changed in an optimal tableau only: the dual simplex method starts from one.
    if (!isOptimal_) optimize();
    applyConstants();
    if (!restoreFeasibility()) rebuild(conflicts);
    insertPending(conflicts);
    if (!isOptimal_ && !optimize()) rebuild(conflicts);
    return conflicts;
}

std::vector<ConstraintSolver::Variable> ConstraintSolver::takeChanged() {
    for (const Variable variable : changed_) symbols_[variable].isListedAsChanged = false;
    return std::exchange(changed_, {});
}

void ConstraintSolver::applyConstants() {
    for (const ConstraintId id : pendingConstants_) {
        Constraint& constraint = constraints_[id];
        constraint.hasPendingConstant = false;
        const double difference = constraint.pendingConstant - constraint.constant;
        constraint.constant = constraint.pendingConstant;
        if (difference != 0) shift(constraint, difference);
    }
    pendingConstants_.clear();
}

// The marker is renamed to absorb the difference, which moves the constants of just the rows that it stands in.
void ConstraintSolver::shift(Constraint& constraint, double difference) {
    const SymbolId marker = constraint.marker();
    // The sum equals `above - below`, or the dummy.
    const double change = marker == constraint.below ? -difference : difference;
    if (const int row = symbols_[marker].row; row >= 0) {
        setRowConstant(row, rows_[static_cast<std::size_t>(row)].constant + change);
        return;
    }
    for (const int row : symbols_[marker].column) {
        const Row& touched = rows_[static_cast<std::size_t>(row)];
        setRowConstant(row, touched.constant - coefficient(touched.terms, marker) * change);
    }
}

void ConstraintSolver::insertPending(std::vector<Conflict>& conflicts) {
    const std::vector<ConstraintId> pending = std::exchange(pendingInserts_, {});
    for (const ConstraintId id : pending) {
        Conflict conflict;
        if (insert(id, conflict)) continue;
        conflicts.push_back(std::move(conflict));
        remove(id);
    }
}

bool ConstraintSolver::insert(ConstraintId id, Conflict& conflict) {
    Row& row = fresh_;
    row.terms.clear();
    row.constant = constraints_[id].constant;
    for (const Term& term : constraints_[id].terms) {
        const int basicRow = symbols_[term.variable].row;
        if (basicRow >= 0)
            addScaled(row, rows_[static_cast<std::size_t>(basicRow)], term.coefficient, -1);
        else
            addTerm(row.terms, term.variable, term.coefficient);
    }
    makeDeviations(id, row);
    Constraint& constraint = constraints_[id];
    constraint.isInTableau = true;

    const SymbolId subject = chooseSubject(row, constraint);
    if (!subject) return insertWithArtificial(row, id, conflict);
    solveFor(row, subject);
    install(row);
    isOptimal_ = false;
    return true;
}

void ConstraintSolver::makeDeviations(ConstraintId id, Row& row) {
    const Cost cost = constraints_[id].cost;
    const auto deviation = [&](float priority, double coefficient) -> SymbolId {
        if (priority == forbidden) return 0;
        const SymbolId symbol = newSymbol(Kind::Slack, id);
        addTerm(row.terms, symbol, coefficient);
        if (isCost(priority)) addCost(symbol, priority, 1);
        return symbol;
    };
    const SymbolId above = deviation(cost.above, -1), below = deviation(cost.below, 1);
    SymbolId dummy = 0;
    if (!above && !below) {
        dummy = newSymbol(Kind::Dummy, id);
        addTerm(row.terms, dummy, -1);
    }
    Constraint& constraint = constraints_[id];
    constraint.above = above;
    constraint.below = below;
    constraint.dummy = dummy;
}

/// The symbol that the new row, "constant + terms = 0", can be solved for without leaving the feasible region; 0 when
/// that is not so plain.
ConstraintSolver::SymbolId ConstraintSolver::chooseSubject(const Row& row, const Constraint& constraint) const {
    SymbolId external = 0;
    bool hasSlack = false;
    for (const Term& term : row.terms) {
        const Symbol& symbol = symbols_[term.variable];
        hasSlack |= symbol.kind == Kind::Slack;
        if (symbol.kind != Kind::External) continue;
        if (!external || symbol.column.size() < symbols_[external].column.size()) external = term.variable;
    }
    if (external) return external;

    for (const SymbolId own : {constraint.above, constraint.below}) {
        if (own && -row.constant / coefficient(row.terms, own) >= 0) return own;
    }
    if (!hasSlack) return std::abs(row.constant) < contradiction ? constraint.dummy : 0;
    for (const Term& term : row.terms) {
        if (symbols_[term.variable].kind != Kind::Slack) continue;
        const double value = -row.constant / term.coefficient;
        if (value >= 0 && keepsFeasible(term.variable, value)) return term.variable;
    }
    return 0;
}

/// Whether no row turns negative when the parametric symbol rises from 0 to the value.
bool ConstraintSolver::keepsFeasible(SymbolId symbol, double value) const {
    return std::ranges::all_of(symbols_[symbol].column, [&](int index) {
        const Row& row = rows_[static_cast<std::size_t>(index)];
        return symbols_[row.basic].kind != Kind::Slack ||
               row.constant + coefficient(row.terms, symbol) * value >= -feasible;
    });
}

/// Makes room for the row by lowering how much it is missed, step by step, to 0; where that is impossible the row
/// contradicts those that stop it.
bool ConstraintSolver::insertWithArtificial(Row& row, ConstraintId id, Conflict& conflict) {
    const SymbolId artificial = newSymbol(Kind::Slack, id);
    addTerm(row.terms, artificial, row.constant > 0 ? -1 : 1);
    solveFor(row, artificial);
    objectives_.insert(objectives_.begin(), Objective{forbidden, row.terms});
    install(row);
    isOptimal_ = false;
    optimize();
    objectives_.erase(objectives_.begin());

    const int artificialRow = symbols_[artificial].row;
    const bool isMissed = artificialRow >= 0 && rows_[static_cast<std::size_t>(artificialRow)].constant > contradiction;
    if (!isMissed) {
        dropArtificial(artificial, id);
        return true;
    }
    conflict = {id, requiredIn(rows_[static_cast<std::size_t>(artificialRow)], id)};
    deleteRow(artificialRow);
    freeSymbol(artificial);
    forgetSymbols(constraints_[id]);
    return false;
}

void ConstraintSolver::dropArtificial(SymbolId artificial, ConstraintId id) {
    if (const int index = symbols_[artificial].row; index >= 0) {
        const Row& row = rows_[static_cast<std::size_t>(index)];
        Term best{constraints_[id].dummy, 0};
        for (const Term& term : row.terms) {
            const bool isBetter =
                symbols_[term.variable].kind != Kind::Dummy && std::abs(term.coefficient) > std::abs(best.coefficient);
            if (isBetter) best = term;
        }
        // Without such a symbol the row only repeats others, and tells nothing.
        if (best.variable && coefficient(row.terms, best.variable) != 0)
            pivot(index, best.variable);
        else
            deleteRow(index);
        isOptimal_ = false;
    }
    freeSymbol(artificial);
}

/// The constraints whose forbidden sides together make the row impossible.
std::vector<ConstraintSolver::ConstraintId> ConstraintSolver::requiredIn(const Row& row, ConstraintId except) const {
    std::vector<ConstraintId> found;
    for (const Term& term : row.terms) {
        const ConstraintId id = symbols_[term.variable].constraint;
        if (id && id != except) found.push_back(id);
    }
    std::ranges::sort(found);
    const auto repeated = std::ranges::unique(found);
    found.erase(repeated.begin(), repeated.end());
    return found;
}

void ConstraintSolver::takeOut(Constraint& constraint) {
    for (const auto& [symbol, priority] :
         {std::pair{constraint.above, constraint.cost.above}, {constraint.below, constraint.cost.below}}) {
        if (symbol && isCost(priority)) addCost(symbol, priority, -1);
    }
    // Where a deviation is basic no other row knows this constraint: both deviations always stand together.
    for (const SymbolId symbol : {constraint.above, constraint.below, constraint.dummy}) {
        if (!symbol || symbols_[symbol].row < 0) continue;
        deleteRow(symbols_[symbol].row);
        forgetSymbols(constraint);
        isOptimal_ = false;
        return;
    }
    const int row = rowToLeave(constraint, constraint.marker());
    if (row >= 0) {
        pivot(row, constraint.marker());
        deleteRow(row);
    }
    forgetSymbols(constraint);
    isOptimal_ = false;
}

/// The row to solve for the marker of a constraint that goes, so that all others stay feasible; -1 when none knows it.
int ConstraintSolver::rowToLeave(const Constraint& constraint, SymbolId marker) const {
    int best = -1, bestClass = 4;
    double bestRatio = 0;
    for (const int index : symbols_[marker].column) {
        const Row& row = rows_[static_cast<std::size_t>(index)];
        const double factor = coefficient(row.terms, marker);
        const Kind kind = symbols_[row.basic].kind;
        // A redundant equation takes the place of the one that goes. Variables come last: they may take any value.
        int rowClass = kind == Kind::Dummy ? 0 : kind == Kind::External ? 3 : factor < 0 ? 1 : 2;
        double ratio = rowClass == 1 || rowClass == 2 ? row.constant / std::abs(factor) : 0;
        if (rowClass == 3) {
            const bool isOwn =
                std::ranges::find(constraint.terms, row.basic, &Term::variable) != constraint.terms.end();
            ratio = isOwn ? 0 : 1;
        }
        const bool isBetter =
            std::tie(rowClass, ratio) < std::tie(bestClass, bestRatio) ||
            (rowClass == bestClass && ratio == bestRatio && row.basic < rows_[static_cast<std::size_t>(best)].basic);
        if (!isBetter) continue;
        best = index;
        bestClass = rowClass;
        bestRatio = ratio;
    }
    return best;
}

void ConstraintSolver::forgetSymbols(Constraint& constraint) {
    for (const SymbolId symbol : {constraint.above, constraint.below, constraint.dummy}) {
        if (symbol) freeSymbol(symbol);
    }
    constraint.above = constraint.below = constraint.dummy = 0;
    constraint.isInTableau = false;
}

/// Starts anew from the constraints, the oldest first, so that what came last is what gives way.
void ConstraintSolver::rebuild(std::vector<Conflict>& conflicts) {
    for (Row& row : rows_) {
        row.basic = 0;
        row.terms.clear();
    }
    unusedRows_.clear();
    for (int row = static_cast<int>(rows_.size()) - 1; row >= 0; --row) unusedRows_.push_back(row);
    objectives_.clear();
    infeasible_.clear();
    for (SymbolId id = 1; id < symbols_.size(); ++id) {
        symbols_[id].row = -1;
        symbols_[id].column.clear();
        if (symbols_[id].kind == Kind::External)
            listAsChanged(id);
        else if (symbols_[id].kind != Kind::Unused)
            freeSymbol(id);
    }
    pendingInserts_.clear();
    for (ConstraintId id = 1; id < constraints_.size(); ++id) {
        Constraint& constraint = constraints_[id];
        if (!constraint.isUsed) continue;
        constraint.above = constraint.below = constraint.dummy = 0;
        constraint.isInTableau = false;
        pendingInserts_.push_back(id);
    }
    std::ranges::sort(pendingInserts_, {}, [this](ConstraintId id) { return constraints_[id].changed; });
    isOptimal_ = true;
    insertPending(conflicts);
    if (!isOptimal_) optimize();
}

}  // namespace flarebox
