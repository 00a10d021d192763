#!/usr/bin/env python3
"""Tests of the mutation script: python3 tests/mutation/test_mutate.py"""

import json
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import mutants
import mutate
import workshop


def made(text, operator=None, file="core/X.cpp"):
    """The changed sources, each as "before -> after", of one operator or all."""
    return [f"{one.before} -> {one.after}" for one in mutants.mutants_of(file, text)
            if operator in (None, one.operator)]


def in_function(body):
    return f"void F() {{\n    {body}\n}}\n"


class Tokens(unittest.TestCase):
    def test_comments_texts_and_directives_are_left_alone(self):
        text = '#define A 1 \\\n    + 2\n// if (a == 1)\n/* b == 2 */\nconst char* c = "d == 3";\n'
        self.assertEqual(made(text), ['"d == 3" -> "~d == 3"'])

    def test_a_raw_text_ends_with_its_mark(self):
        text = 'auto a = R"x(b ")" c)x";\n'
        self.assertEqual([token.text for token in mutants.tokenize(text)], ["auto", "a", "=", 'R"x(b ")" c)x"', ";"])

    def test_a_number_keeps_its_marks_and_its_suffix(self):
        self.assertEqual(made("int a = 32'767;\n"), ["32'767 -> 32768"])
        self.assertEqual(made("auto a = 0x10u;\n"), ["0x10u -> 0x11u"])
        self.assertEqual(made("auto a = 0xFFFFFFFF;\n"), ["0xFFFFFFFF -> 0xfffffffe"])

    def test_an_escaped_quote_does_not_end_a_text(self):
        self.assertEqual(made('auto a = L"\\"b";\n'), ['L"\\"b" -> L"~\\"b"'])


class Operators(unittest.TestCase):
    def test_relations_change_to_their_neighbours(self):
        self.assertEqual(made(in_function("return a < b;"), "relation"), ["< -> <="])
        self.assertEqual(made(in_function("return a != b;"), "relation"), ["!= -> =="])

    def test_angle_brackets_of_templates_are_no_relations(self):
        self.assertEqual(made("template<class T> std::vector<std::set<T>> F();\n"), [])

    def test_references_are_no_arithmetic(self):
        self.assertEqual(made("struct A {\n    A(A&& other, const B& b, C* c) noexcept;\n};\n"), [])

    def test_logic_is_swapped_over_line_ends(self):
        self.assertEqual(made(in_function("return a &&\n        b;"), "logic"), ["&& -> ||"])

    def test_texts_are_joined_only(self):
        self.assertEqual(made(in_function('a = b + L"c";'), "arithmetic"), [])
        self.assertEqual(made(in_function("a = b + c;"), "arithmetic"), ["+ -> -"])

    def test_a_choice_is_turned_round(self):
        self.assertEqual(made(in_function("return a ? b(1, 2) : c;"), "choice"), ["b(1, 2) : c -> c : b(1, 2)"])

    def test_a_choice_within_a_choice_is_turned_round_by_itself(self):
        self.assertEqual(made(in_function("return a ? b : c ? d : e;"), "choice"),
                         ["b : c ? d : e -> c ? d : e : b", "d : e -> e : d"])

    def test_texts_and_truths_change(self):
        self.assertEqual(made("bool a = true;\n"), ["true -> false"])
        self.assertEqual(made("auto a = L'b';\n"), ["L'b' -> L'~'"])


class Conditions(unittest.TestCase):
    def test_a_condition_is_negated(self):
        self.assertEqual(made(in_function("if (a) { }"), "condition"), ["a -> !(a)"])

    def test_one_equality_is_turned_round_once(self):
        self.assertEqual(made(in_function("if (a == b) { }")), ["== -> !="])

    def test_the_part_behind_an_initialiser_is_negated(self):
        self.assertEqual(made(in_function("if (auto a = b(); c(a)) { }"), "condition"), ["c(a) -> !(c(a))"])

    def test_a_declaration_is_not_negated(self):
        self.assertEqual(made(in_function("if (auto a = b()) { }"), "condition"), [])


class Rows(unittest.TestCase):
    TABLE = 'constexpr Row kRows[] = {\n    {1, A::B, L"x"},\n    {2, A::C, L"y"},\n};\n'

    def test_each_row_is_deleted(self):
        self.assertEqual(made(self.TABLE, "row"), ['{1, A::B, L"x"}, -> ', '{2, A::C, L"y"}, -> '])

    def test_the_last_row_takes_the_comma_before_it_along(self):
        self.assertEqual(made("int a[] = {b, c};\n", "row"), ["b, -> ", ", c -> "])

    def test_a_name_becomes_the_next_rows(self):
        self.assertEqual(made(self.TABLE, "value"), ["A::B -> A::C", "A::C -> A::B"])

    def test_a_case_is_deleted(self):
        self.assertEqual(made(in_function("switch (a) {\n    case B: return 1;\n    default: return 0;\n    }"), "row"),
                         ["case B: -> "])


class Statements(unittest.TestCase):
    def deletions(self, body):
        return made(in_function(body), "deletion")

    def test_calls_and_assignments_are_deleted(self):
        self.assertEqual(self.deletions("a.b(c);"), ["a.b(c) -> "])
        self.assertEqual(self.deletions("a->b = c;"), ["a->b = c -> "])
        self.assertEqual(self.deletions("*a = b;"), ["*a = b -> "])
        self.assertEqual(self.deletions("++a;"), ["++a -> "])
        self.assertEqual(self.deletions("throw A(b);"), ["throw A(b) -> "])

    def test_declarations_that_are_used_stay(self):
        self.assertEqual(self.deletions("const A a = b;\n    c(a);"), ["c(a) -> "])

    def test_guards_are_deleted(self):
        self.assertEqual(self.deletions("const Lock hold(lock);\n    a();"), ["const Lock hold(lock) -> ", "a() -> "])

    def test_statements_in_lambdas_are_deleted_by_themselves(self):
        self.assertEqual(self.deletions("run([&] { a(); });"), ["run([&] { a(); }) -> ", "a() -> "])

    def test_results_become_empty(self):
        self.assertEqual(made(in_function("return a;"), "result"), ["a -> {}"])
        self.assertEqual(made(in_function("return {};"), "result"), [])
        self.assertEqual(made(in_function("return S_OK;"), "result"), [])

    def test_members_and_functions_in_classes_are_told_apart(self):
        text = ("class A : public B<C> {\n  public:\n    int F() const { return m_a; }\n\n"
                "  private:\n    int m_a = 0;\n};\n")
        self.assertEqual(made(text), ["m_a -> {}", "0 -> 1"])

    def test_constructors_with_initialisers_have_bodies(self):
        self.assertEqual(made("A::A(int b) : m_b{b} {\n    c();\n}\n"), ["c() -> "])

    def test_initialisers_are_no_bodies(self):
        self.assertEqual(made(in_function("return Failure{a, b};"), "deletion"), [])


class NotCode(unittest.TestCase):
    def test_declarations_alone_have_no_mutants(self):
        text = ('#pragma once\nextern "C" {\n}\nnamespace a {\ntemplate<int N = 3> class B;\n'
                "struct C {\n    virtual void F() = 0;\n    C() = default;\n"
                "    [[nodiscard(\"x\")]] bool operator<(const C&);\n"
                "};\nstatic_assert(sizeof(int) == 4, \"four\");\nusing D = E<5>;\n} // namespace a\n")
        self.assertEqual(made(text), [])


class Identity(unittest.TestCase):
    TEXT = "int F() {\n    if (a) {\n        b();\n    }\n    b();\n}\n"

    def test_lines_that_move_keep_it(self):
        before = {mutants.identity(one) for one in mutants.mutants_of("core/X.cpp", self.TEXT)}
        after = {mutants.identity(one) for one in mutants.mutants_of("core/X.cpp", "// A comment.\n\n" + self.TEXT)}
        self.assertEqual(before, after)

    def test_equal_lines_are_told_apart(self):
        found = [one for one in mutants.mutants_of("core/X.cpp", self.TEXT) if one.before == "b()"]
        self.assertEqual([one.occurrence for one in found], [1, 2])
        self.assertEqual([mutants.name(one) for one in found],
                         ["core/X.cpp:3:deletion:1", "core/X.cpp:5:deletion:1"])

    def test_the_change_is_made_at_its_place(self):
        one = [one for one in mutants.mutants_of("core/X.cpp", self.TEXT) if one.line == 5][0]
        self.assertEqual(mutants.apply(self.TEXT, one), self.TEXT[::-1].replace(")(b", "", 1)[::-1])

    def test_regions_go_from_the_statement_outwards(self):
        one = [one for one in mutants.mutants_of("core/X.cpp", self.TEXT) if one.line == 3][0]
        self.assertEqual(one.regions, [(3, 3), (2, 4), (1, 6)])


class Samples(unittest.TestCase):
    def test_every_folder_has_its_share_and_a_least_one(self):
        self.assertEqual(mutate.shares({"core": 900, "cli": 95, "messages": 5}, 100),
                         {"core": 90, "cli": 10, "messages": 5})

    def test_a_seed_always_picks_the_same(self):
        found = mutants.mutants_of("core/X.cpp", "".join(f"int a{n} = {n};\n" for n in range(50)))
        self.assertEqual(mutate.in_order_of(7, found), mutate.in_order_of(7, found[::-1]))
        self.assertNotEqual(mutate.in_order_of(7, found), mutate.in_order_of(8, found))


class KnownResults(unittest.TestCase):
    def setUp(self):
        self.text = in_function("a();")
        self.mutant = mutants.mutants_of("core/X.cpp", self.text)[0]
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = Path(folder.name) / "results.jsonl"

    def add(self, status, tests="t"):
        mutate.Results(self.path).add({"id": mutants.identity(self.mutant), "status": status, "after": "",
                                       "source": mutate.digest(self.text), "tests": tests})

    def found(self, text=None, tests="t"):
        return mutate.Results(self.path).of(self.mutant, text or self.text, tests)

    def test_a_killed_one_is_done_until_its_source_changes(self):
        self.add("killed")
        self.assertEqual(self.found(tests="other")["status"], "killed")
        self.assertIsNone(self.found(text=self.text + "\n"))

    def test_a_survivor_is_tried_again_with_other_tests(self):
        self.add("survived")
        self.assertEqual(self.found()["status"], "survived")
        self.assertIsNone(self.found(tests="other"))

    def test_the_last_line_counts(self):
        self.add("survived")
        self.add("killed")
        self.assertEqual(self.found()["status"], "killed")
        self.assertEqual(len(self.path.read_text().splitlines()), 2)


class ExplainedSurvivors(unittest.TestCase):
    def test_a_paragraph_names_a_mutant(self):
        found = mutate.Explanations("# Words.\n\ncore/X.cpp deletion:1 #2 accepted\n    b();\nBecause.\n")
        self.assertEqual(found.rows, {"core/X.cpp deletion:1 #2 b();": "accepted"})

    def test_the_first_line_of_its_text_is_meant_without_a_number(self):
        found = mutate.Explanations("core/X.cpp deletion:1 equivalent\n    b();\nBecause.\n")
        self.assertEqual(found.kind("core/X.cpp deletion:1 #1 b();"), "equivalent")

    def test_a_reason_is_wanted(self):
        with self.assertRaises(SystemExit):
            mutate.Explanations("core/X.cpp deletion:1 equivalent\n    b();\n")

    def test_the_list_explains_mutants_that_are_made(self):
        made, texts = mutate.all_mutants(list(mutate.THRESHOLDS))
        self.assertEqual(list(mutate.lost(mutate.Explanations(mutate.EXPLAINED.read_text()), texts, made)), [])


class Reached(unittest.TestCase):
    def reach(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "reach.json"
            path.write_text(json.dumps({
                "one": {"hits": {"core/X.cpp": [10]}, "code": {"core/X.cpp": [10, 20]}},
                "two": {"hits": {"core/X.cpp": [10, 20]}, "code": {"core/X.cpp": [10, 20, 30]}},
            }))
            found = workshop.Reach(path)
        found.prepare()
        return found

    def suites_for(self, *regions, file="core/X.cpp"):
        one = mutants.mutants_of(file, "int a = 1;\n")[0]
        return self.reach().suites_for(one._replace(regions=list(regions)))

    def test_tests_that_ran_the_line_reach_it(self):
        self.assertEqual(self.suites_for((20, 20), (5, 40)), {"two"})

    def test_code_that_nothing_runs_is_not_reached(self):
        self.assertEqual(self.suites_for((30, 30), (5, 40)), set())

    def test_lines_without_code_are_reached_with_what_stands_around(self):
        self.assertEqual(self.suites_for((11, 12), (9, 11)), {"one", "two"})
        self.assertEqual(self.suites_for(), {"one", "two"})

    def test_of_a_file_without_code_nothing_is_known(self):
        self.assertIsNone(self.suites_for(file="core/Y.h"))


class Logs(unittest.TestCase):
    def read(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "log"
            path.write_text(text)
            return workshop.read_log(path)

    def test_passed_and_failed_tests_are_told_apart(self):
        self.assertEqual(self.read("[ RUN      ] A.B\n[       OK ] A.B (1 ms)\n[ RUN      ] A.C\nwords\n"
                                   "[  FAILED  ] A.C (2 ms)\n[  FAILED  ] A.C\n"), ({"A.B"}, {"A.C"}))

    def test_a_test_that_never_ended_failed(self):
        self.assertEqual(self.read("[ RUN      ] A.B\n[       OK ] A.B (1 ms)\n[ RUN      ] P/A.C/0\n"),
                         ({"A.B"}, {"P/A.C/0"}))

    def test_a_parameter_is_no_part_of_the_name(self):
        self.assertEqual(self.read("[ RUN      ] P/A.C/0\n[  FAILED  ] P/A.C/0, where GetParam() = 1 (0 ms)\n"),
                         (set(), {"P/A.C/0"}))


if __name__ == "__main__":
    unittest.main()
