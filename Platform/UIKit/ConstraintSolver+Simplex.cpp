// The simplex method on the solver's tableau. Among equally good choices the symbol with the lowest number is taken,
// which keeps the method from going round in circles.
#include <UIKit/ConstraintSolver.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace flarebox {
double ConstraintSolver::coefficient(const Terms& terms, SymbolId symbol) {
    const auto found = std::ranges::lower_bound(terms, symbol, {}, &Term::variable);
    return found != terms.end() && found->variable == symbol ? found->coefficient : 0;
}

/// False when it gave up, which only rounding can bring about.
bool ConstraintSolver::optimize() {
    isOptimal_ = true;
    for (std::size_t steps = 100 + 20 * rows_.size(); steps > 0; --steps) {
        const SymbolId symbol = entering();
        if (!symbol) return true;
        const int row = leaving(symbol);
        if (row < 0) return false;
        pivot(row, symbol);
    }
    return false;
}

/// A parametric symbol whose rise would lower an objective and raise none of higher priority.
ConstraintSolver::SymbolId ConstraintSolver::entering() const {
    for (auto objective = objectives_.begin(); objective != objectives_.end(); ++objective) {
        const auto raisesNoneBefore = [&](SymbolId symbol) {
            return std::all_of(objectives_.begin(), objective,
                               [&](const Objective& higher) { return coefficient(higher.terms, symbol) <= nothing; });
        };
        for (const Term& term : objective->terms) {
            if (term.coefficient < -nothing && symbols_[term.variable].kind == Kind::Slack &&
                raisesNoneBefore(term.variable))
                return term.variable;
        }
    }
    return 0;
}

/// The row that first reaches 0 when the symbol rises.
int ConstraintSolver::leaving(SymbolId entering) const {
    int best = -1;
    double bestRatio = 0;
    for (const int index : symbols_[entering].column) {
        const Row& row = rows_[static_cast<std::size_t>(index)];
        if (symbols_[row.basic].kind != Kind::Slack) continue;
        const double factor = coefficient(row.terms, entering);
        if (factor >= 0) continue;
        const double ratio = -row.constant / factor;
        const bool isBetter = best < 0 || ratio < bestRatio ||
                              (ratio == bestRatio && row.basic < rows_[static_cast<std::size_t>(best)].basic);
        if (!isBetter) continue;
        best = index;
        bestRatio = ratio;
    }
    return best;
}

/// The dual simplex method: after constants have moved. False when some constraints contradict each other.
bool ConstraintSolver::restoreFeasibility() {
    std::size_t steps = 100 + 20 * rows_.size();
    while (!infeasible_.empty()) {
        const int index = infeasible_.back();
        infeasible_.pop_back();
        const Row& row = rows_[static_cast<std::size_t>(index)];
        if (!row.basic) continue;
        const Kind kind = symbols_[row.basic].kind;
        if (kind == Kind::Dummy && std::abs(row.constant) > contradiction) return false;
        if (kind != Kind::Slack || row.constant >= -feasible) continue;
        const SymbolId symbol = enteringForInfeasible(row);
        if (!symbol) {
            if (row.constant < -contradiction) return false;
            continue;
        }
        if (--steps == 0) return false;
        pivot(index, symbol);
    }
    return true;
}

/// The symbol that lifts the row to 0 at the least cost.
ConstraintSolver::SymbolId ConstraintSolver::enteringForInfeasible(const Row& row) const {
    Term best;
    for (const Term& term : row.terms) {
        if (term.coefficient <= nothing || symbols_[term.variable].kind == Kind::Dummy) continue;
        if (!best.variable || costsLess(term, best)) best = term;
    }
    return best.variable;
}

bool ConstraintSolver::costsLess(const Term& one, const Term& other) const {
    for (const Objective& objective : objectives_) {
        const double difference = coefficient(objective.terms, one.variable) / one.coefficient -
                                  coefficient(objective.terms, other.variable) / other.coefficient;
        if (std::abs(difference) > nothing) return difference < 0;
    }
    return false;
}

void ConstraintSolver::pivot(int index, SymbolId entering) {
    Row& row = rows_[static_cast<std::size_t>(index)];
    const SymbolId leaving = row.basic;
    std::erase(symbols_[entering].column, index);
    symbols_[leaving].row = -1;
    symbols_[leaving].column.push_back(index);
    listAsChanged(leaving);
    // basic = constant + terms, as "constant + terms - basic = 0".
    addTerm(row.terms, leaving, -1);
    solveFor(row, entering);
    symbols_[entering].row = index;
    listAsChanged(entering);
    substitute(entering, row);
}

/// Turns "constant + terms = 0" into "symbol = constant + terms".
void ConstraintSolver::solveFor(Row& row, SymbolId symbol) {
    const auto own = std::ranges::lower_bound(row.terms, symbol, {}, &Term::variable);
    const double factor = -1 / own->coefficient;
    row.terms.erase(own);
    for (Term& term : row.terms) term.coefficient *= factor;
    row.constant *= factor;
    row.basic = symbol;
}

/// Makes the row part of the tableau.
void ConstraintSolver::install(Row& row) {
    const int index = newRow();
    substitute(row.basic, row);
    symbols_[row.basic].row = index;
    for (const Term& term : row.terms) symbols_[term.variable].column.push_back(index);
    listAsChanged(row.basic);
    // Swapped, so that neither gives up its memory.
    std::swap(rows_[static_cast<std::size_t>(index)], row);
}

/// Replaces the symbol wherever it is parametric.
void ConstraintSolver::substitute(SymbolId symbol, const Row& row) {
    for (const int index : symbols_[symbol].column) {
        Row& target = rows_[static_cast<std::size_t>(index)];
        const auto own = std::ranges::lower_bound(target.terms, symbol, {}, &Term::variable);
        const double factor = own->coefficient;
        target.terms.erase(own);
        addScaled(target, row, factor, index);
    }
    symbols_[symbol].column.clear();
    for (Objective& objective : objectives_) {
        const auto own = std::ranges::lower_bound(objective.terms, symbol, {}, &Term::variable);
        if (own == objective.terms.end() || own->variable != symbol) continue;
        const double factor = own->coefficient;
        objective.terms.erase(own);
        mergeTerms(objective.terms, row.terms, factor, -1);
    }
}

void ConstraintSolver::deleteRow(int index) {
    Row& row = rows_[static_cast<std::size_t>(index)];
    for (const Term& term : row.terms) std::erase(symbols_[term.variable].column, index);
    symbols_[row.basic].row = -1;
    listAsChanged(row.basic);
    row.basic = 0;
    row.terms.clear();
    unusedRows_.push_back(index);
}

/// `targetIndex` is the target's place in the tableau, -1 when it has none yet.
void ConstraintSolver::addScaled(Row& target, const Row& source, double factor, int targetIndex) {
    mergeTerms(target.terms, source.terms, factor, targetIndex);
    const double constant = target.constant + source.constant * factor;
    if (targetIndex >= 0)
        setRowConstant(targetIndex, constant);
    else
        target.constant = constant;
}

void ConstraintSolver::mergeTerms(Terms& target, const Terms& source, double factor, int targetIndex) {
    scratch_.clear();
    auto old = target.begin();
    for (const Term& term : source) {
        while (old != target.end() && old->variable < term.variable) scratch_.push_back(*old++);
        const bool isThere = old != target.end() && old->variable == term.variable;
        const double sum = (isThere ? old->coefficient : 0) + term.coefficient * factor;
        const bool stays = std::abs(sum) > nothing;
        if (stays) scratch_.push_back({term.variable, sum});
        if (isThere) ++old;
        if (targetIndex < 0 || stays == isThere) continue;
        std::vector<int>& column = symbols_[term.variable].column;
        if (stays)
            column.push_back(targetIndex);
        else
            std::erase(column, targetIndex);
    }
    scratch_.insert(scratch_.end(), old, target.end());
    target.swap(scratch_);
}

void ConstraintSolver::addTerm(Terms& terms, SymbolId symbol, double coefficient) {
    const auto place = std::ranges::lower_bound(terms, symbol, {}, &Term::variable);
    if (place == terms.end() || place->variable != symbol) {
        terms.insert(place, {symbol, coefficient});
        return;
    }
    place->coefficient += coefficient;
    if (std::abs(place->coefficient) <= nothing) terms.erase(place);
}

ConstraintSolver::Objective& ConstraintSolver::objective(float priority) {
    const auto place = std::ranges::lower_bound(objectives_, priority, std::greater<>(), &Objective::priority);
    if (place != objectives_.end() && place->priority == priority) return *place;
    return *objectives_.insert(place, Objective{priority, {}});
}

/// Adds the symbol, in terms of what is parametric, to what is made small.
void ConstraintSolver::addCost(SymbolId symbol, float priority, double factor) {
    Terms& terms = objective(priority).terms;
    const int row = symbols_[symbol].row;
    if (row < 0)
        addTerm(terms, symbol, factor);
    else
        mergeTerms(terms, rows_[static_cast<std::size_t>(row)].terms, factor, -1);
}

ConstraintSolver::SymbolId ConstraintSolver::newSymbol(Kind kind, ConstraintId constraint) {
    SymbolId id = static_cast<SymbolId>(symbols_.size());
    if (unusedSymbols_.empty()) {
        symbols_.emplace_back();
    } else {
        id = unusedSymbols_.back();
        unusedSymbols_.pop_back();
    }
    symbols_[id].kind = kind;
    symbols_[id].constraint = constraint;
    return id;
}

void ConstraintSolver::freeSymbol(SymbolId id) {
    Symbol& symbol = symbols_[id];
    // Rounding may have left traces of it.
    const auto erase = [id](Terms& terms) {
        std::erase_if(terms, [id](const Term& term) { return term.variable == id; });
    };
    for (const int row : symbol.column) erase(rows_[static_cast<std::size_t>(row)].terms);
    for (Objective& objective : objectives_) erase(objective.terms);
    symbol.column.clear();
    symbol.kind = Kind::Unused;
    symbol.constraint = 0;
    if (symbol.isListedAsChanged) {
        std::erase(changed_, id);
        symbol.isListedAsChanged = false;
    }
    unusedSymbols_.push_back(id);
}

int ConstraintSolver::newRow() {
    if (!unusedRows_.empty()) {
        const int index = unusedRows_.back();
        unusedRows_.pop_back();
        return index;
    }
    rows_.emplace_back();
    return static_cast<int>(rows_.size()) - 1;
}

void ConstraintSolver::setRowConstant(int index, double constant) {
    Row& row = rows_[static_cast<std::size_t>(index)];
    if (row.constant == constant) return;
    row.constant = constant;
    const Kind kind = symbols_[row.basic].kind;
    if (kind == Kind::External)
        listAsChanged(row.basic);
    else if (kind == Kind::Dummy || constant < -feasible)
        infeasible_.push_back(index);
}

void ConstraintSolver::listAsChanged(SymbolId id) {
    Symbol& symbol = symbols_[id];
    if (symbol.kind != Kind::External || symbol.isListedAsChanged) return;
    symbol.isListedAsChanged = true;
    changed_.push_back(id);
}

}  // namespace flarebox
