#include <UIKit/ConstraintSolver.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>
#include <random>

namespace flarebox {
namespace {

using Solver = ConstraintSolver;
using Term = Solver::Term;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr float required = Solver::forbidden;
constexpr Solver::Cost equal{required, required}, atLeast{Solver::free, required}, atMost{required, Solver::free};

struct Rule {
    std::vector<Term> terms;
    double constant = 0;
    Solver::Cost cost;
};

/// By how much each priority is missed, the highest first; nothing when something forbidden happens.
using Misses = std::map<float, double, std::greater<>>;
template <class ValueOf>
std::optional<Misses> missesOf(const std::vector<Rule>& rules, ValueOf valueOf) {
    Misses misses;
    for (const Rule& rule : rules) {
        double sum = rule.constant;
        for (const Term& term : rule.terms) sum += term.coefficient * valueOf(term.variable);
        const float priority = sum > 0 ? rule.cost.above : rule.cost.below;
        if (priority == required && std::abs(sum) > 1e-5) return std::nullopt;
        if (priority == required || priority == Solver::free) continue;
        misses[priority] += std::abs(sum);
    }
    return misses;
}

bool isLess(const Misses& one, const Misses& other) {
    Misses all = one;
    all.insert(other.begin(), other.end());
    const auto get = [](const Misses& misses, float priority) {
        return misses.contains(priority) ? misses.at(priority) : 0;
    };
    for (const auto& [priority, unused] : all) {
        const double difference = get(one, priority) - get(other, priority);
        if (std::abs(difference) > 1e-4) return difference < 0;
    }
    return false;
}

bool areEqual(const Misses& one, const Misses& other) {
    return !isLess(one, other) && !isLess(other, one);
}

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    int integer(int least, int most) { return std::uniform_int_distribution(least, most)(engine_); }
    template <class Container>
    void shuffle(Container& container) {
        std::shuffle(container.begin(), container.end(), engine_);
    }

private:
    std::mt19937 engine_;
};

TEST(Solver, FindsTheOneSolutionOfRandomEquationsInAnyOrderAndAfterEveryChange) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        const int count = random.integer(2, 25);
        Solver solver;
        std::vector<Solver::Variable> variables;
        std::vector<double> solution;
        for (int i = 0; i < count; ++i) {
            variables.push_back(solver.addVariable());
            solution.push_back(random.integer(-500, 500));
        }
        // A triangle of equations, so that they are independent; then some that only repeat what these say.
        std::vector<std::vector<int>> coefficients;
        for (int i = 0; i < count; ++i) {
            std::vector<int> row(static_cast<std::size_t>(count));
            row[static_cast<std::size_t>(i)] = random.integer(0, 1) ? 1 : -2;
            for (int j = 0; j < i; ++j)
                row[static_cast<std::size_t>(j)] = random.integer(0, 9) < 3 ? random.integer(-1, 1) : 0;
            coefficients.push_back(row);
        }
        for (int i = 0; i < count / 3; ++i)
            coefficients.push_back(coefficients[static_cast<std::size_t>(random.integer(0, count - 1))]);
        random.shuffle(coefficients);

        const auto constantOf = [&](const std::vector<int>& row) {
            return -std::inner_product(row.begin(), row.end(), solution.begin(), 0.0);
        };
        const auto termsOf = [&](const std::vector<int>& row) {
            std::vector<Term> terms;
            for (std::size_t i = 0; i < row.size(); ++i) {
                if (row[i] != 0) terms.push_back({variables[i], static_cast<double>(row[i])});
            }
            return terms;
        };
        std::vector<Solver::ConstraintId> ids;
        for (const auto& row : coefficients) ids.push_back(solver.add(termsOf(row), constantOf(row), equal));
        const auto expectSolved = [&](const char* when) {
            EXPECT_THAT(solver.solve(), IsEmpty()) << when << ", seed " << seed;
            for (std::size_t i = 0; i < variables.size(); ++i)
                EXPECT_NEAR(solver.value(variables[i]), solution[i], 1e-6) << when << ", seed " << seed;
        };
        expectSolved("added");

        for (double& value : solution) value += random.integer(-300, 300);
        for (std::size_t i = 0; i < ids.size(); ++i) solver.setConstant(ids[i], constantOf(coefficients[i]));
        expectSolved("constants changed");

        for (std::size_t i = 0; i < ids.size(); i += 2) solver.remove(ids[i]);
        solver.solve();
        for (std::size_t i = 0; i < ids.size(); i += 2)
            ids[i] = solver.add(termsOf(coefficients[i]), constantOf(coefficients[i]), equal);
        expectSolved("half removed and added again");
    }
}

/// Rules about two variables whose best answer can be found by trying every crossing of their lines.
std::vector<Rule> randomPlaneRules(Random& random, Solver::Variable x, Solver::Variable y) {
    std::vector<Rule> rules;
    for (const Solver::Variable variable : {x, y}) {
        rules.push_back({{{variable, 1}}, 0, atLeast});
        rules.push_back({{{variable, 1}}, -100, atMost});
    }
    const int count = random.integer(2, 7);
    for (int i = 0; i < count; ++i) {
        Rule rule;
        const int a = random.integer(-2, 2), b = random.integer(-2, 2);
        if (a != 0) rule.terms.push_back({x, static_cast<double>(a)});
        if (b != 0) rule.terms.push_back({y, static_cast<double>(b)});
        if (rule.terms.empty()) continue;
        rule.constant = random.integer(-150, 150);
        const float priority =
            std::array{1.0F, 250.0F, 251.0F, 750.0F, 999.0F}[static_cast<std::size_t>(random.integer(0, 4))];
        const int kind = random.integer(0, 2);
        rule.cost = {kind == 0 ? Solver::free : priority, kind == 1 ? Solver::free : priority};
        rules.push_back(rule);
    }
    return rules;
}

Misses bestByTrying(const std::vector<Rule>& rules, Solver::Variable x, Solver::Variable y) {
    const auto coefficient = [](const Rule& rule, Solver::Variable variable) {
        const auto found = std::ranges::find(rule.terms, variable, &Term::variable);
        return found == rule.terms.end() ? 0 : found->coefficient;
    };
    std::optional<Misses> best;
    for (const Rule& one : rules) {
        for (const Rule& other : rules) {
            const double a = coefficient(one, x), b = coefficient(one, y), c = coefficient(other, x),
                         d = coefficient(other, y);
            const double determinant = a * d - b * c;
            if (std::abs(determinant) < 1e-9) continue;
            const double px = (-one.constant * d + other.constant * b) / determinant;
            const double py = (-other.constant * a + one.constant * c) / determinant;
            const auto misses = missesOf(rules, [&](Solver::Variable variable) { return variable == x ? px : py; });
            if (misses && (!best || isLess(*misses, *best))) best = misses;
        }
    }
    return best.value();
}

TEST(Solver, MissesNoPriorityByMoreThanTheBestAnswerDoes) {
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        Random random(seed);
        Solver solver;
        const auto x = solver.addVariable(), y = solver.addVariable();
        std::vector<Rule> rules = randomPlaneRules(random, x, y);
        const Misses best = bestByTrying(rules, x, y);
        random.shuffle(rules);
        for (const Rule& rule : rules) solver.add(rule.terms, rule.constant, rule.cost);
        ASSERT_THAT(solver.solve(), IsEmpty()) << "seed " << seed;
        const auto misses = missesOf(rules, [&](Solver::Variable variable) { return solver.value(variable); });
        ASSERT_TRUE(misses) << "something required is missed, seed " << seed;
        ASSERT_TRUE(areEqual(*misses, best)) << "seed " << seed;
    }
}

TEST(Solver, AnyHistoryOfChangesEndsAsGoodAsAFreshStart) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        Solver solver;
        std::vector<Solver::Variable> variables;
        std::map<Solver::ConstraintId, Rule> live;
        for (int i = 0; i < 12; ++i) {
            const auto variable = solver.addVariable();
            variables.push_back(variable);
            const Rule rule{{{variable, 1}}, 0, atLeast};
            live[solver.add(rule.terms, rule.constant, rule.cost)] = rule;
        }
        const auto randomRule = [&] {
            Rule rule;
            std::vector<Solver::Variable> some = variables;
            random.shuffle(some);
            const int length = random.integer(1, 3);
            for (int i = 0; i < length; ++i)
                rule.terms.push_back({some[static_cast<std::size_t>(i)], i == 0                 ? 1.0
                                                                         : random.integer(0, 1) ? -1.0
                                                                                                : -0.5});
            rule.constant = random.integer(-200, 50);
            const float priority = static_cast<float>(random.integer(1, 5) * 200 - 1);
            rule.cost = std::array<Solver::Cost, 4>{{{priority, priority},
                                                     {priority, 0},
                                                     {0, priority},
                                                     {priority, 1}}}[static_cast<std::size_t>(random.integer(0, 3))];
            return rule;
        };
        for (int step = 0; step < 60; ++step) {
            const int what = random.integer(0, 5);
            if (what < 3 || live.size() < 14) {
                const Rule rule = randomRule();
                live[solver.add(rule.terms, rule.constant, rule.cost)] = rule;
            } else {
                auto which = live.begin();
                std::advance(which, random.integer(12, static_cast<int>(live.size()) - 1));
                if (what == 3) {
                    solver.remove(which->first);
                    live.erase(which);
                } else {
                    which->second.constant = random.integer(-200, 50);
                    solver.setConstant(which->first, which->second.constant);
                }
            }
            if (random.integer(0, 2) != 0) continue;
            ASSERT_THAT(solver.solve(), IsEmpty()) << "seed " << seed;
        }
        solver.solve();

        std::vector<Rule> rules;
        for (const auto& [id, rule] : live) rules.push_back(rule);
        Solver fresh;
        std::map<Solver::Variable, Solver::Variable> freshVariable;
        for (const auto variable : variables) freshVariable[variable] = fresh.addVariable();
        for (Rule rule : rules) {
            for (Term& term : rule.terms) term.variable = freshVariable[term.variable];
            fresh.add(rule.terms, rule.constant, rule.cost);
        }
        fresh.solve();
        const auto after = missesOf(rules, [&](auto variable) { return solver.value(variable); });
        const auto best = missesOf(rules, [&](auto variable) { return fresh.value(freshVariable[variable]); });
        ASSERT_TRUE(after && best) << "seed " << seed;
        ASSERT_TRUE(areEqual(*after, *best)) << "seed " << seed;
    }
}

TEST(Solver, OfContradictingConstraintsTheLatestIsLeftOutAndTheOthersAreNamed) {
    Solver solver;
    const auto x = solver.addVariable(), y = solver.addVariable();
    const auto first = solver.add(std::array{Term{x, 1}}, -10, equal);
    const auto second = solver.add(std::array{Term{y, 1}, Term{x, -1}}, -5, atLeast);
    solver.add(std::array{Term{y, 1}}, 0, atLeast);
    EXPECT_THAT(solver.solve(), IsEmpty());

    const auto third = solver.add(std::array{Term{y, 1}}, -12, atMost);
    auto conflicts = solver.solve();
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_EQ(conflicts[0].offender, third);
    EXPECT_THAT(conflicts[0].others, UnorderedElementsAre(first, second));
    EXPECT_FALSE(solver.contains(third));
    EXPECT_DOUBLE_EQ(solver.value(x), 10);
    EXPECT_GE(solver.value(y), 15);

    // Through a changed constant: what was changed last gives way.
    const auto fourth = solver.add(std::array{Term{y, 1}}, -100, atMost);
    EXPECT_THAT(solver.solve(), IsEmpty());
    solver.setConstant(first, -96);
    conflicts = solver.solve();
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_EQ(conflicts[0].offender, first);
    EXPECT_THAT(conflicts[0].others, ElementsAre(second, fourth));

    // Both ends of an equation that others repeat move together without any contradiction in between.
    const auto one = solver.add(std::array{Term{x, 1}}, -1, equal), two = solver.add(std::array{Term{x, 2}}, -2, equal);
    EXPECT_THAT(solver.solve(), IsEmpty());
    solver.setConstant(one, -3);
    solver.setConstant(two, -6);
    EXPECT_THAT(solver.solve(), IsEmpty());
    EXPECT_DOUBLE_EQ(solver.value(x), 3);
    solver.remove(one);
    solver.solve();
    EXPECT_DOUBLE_EQ(solver.value(x), 3) << "the equation that only repeated the one that went must hold on its own";
}

TEST(Solver, AChangedConstantTouchesOnlyWhatHangsOnIt) {
    Solver solver;
    std::vector<Solver::Variable> chain, apart;
    for (int i = 0; i < 50; ++i) {
        chain.push_back(solver.addVariable());
        apart.push_back(solver.addVariable());
    }
    const auto start = solver.add(std::array{Term{chain[0], 1}}, 0, equal);
    for (std::size_t i = 1; i < chain.size(); ++i) {
        if (i < 5) solver.add(std::array{Term{chain[i], 1}, Term{chain[i - 1], -1}}, -1, equal);
        solver.add(std::array{Term{apart[i], 1}, Term{apart[i - 1], -1}}, -1, equal);
    }
    solver.add(std::array{Term{apart[0], 1}}, -7, equal);
    solver.solve();
    solver.takeChanged();
    solver.setConstant(start, -42);
    solver.solve();
    EXPECT_THAT(solver.takeChanged(), UnorderedElementsAre(chain[0], chain[1], chain[2], chain[3], chain[4]));
    EXPECT_DOUBLE_EQ(solver.value(chain[4]), 46);
    EXPECT_THAT(solver.takeChanged(), IsEmpty());
}

}  // namespace
}  // namespace flarebox
