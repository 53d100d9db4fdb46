#include "platform/gherkin/expressions/regularexpressionprogram.h"

#include <algorithm>

#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

using Program = RegularExpressionProgram;
using Operation = Program::Operation;
using Node = RegularExpressionNode;
using Type = Node::Type;

/// Of instructions and of visits to nodes.
constexpr std::size_t maxInstructions = 20'000;

class Compiler {
public:
    explicit Compiler(const ParsedRegularExpression& expression) {
        m_program.slotCount = 2 * (expression.groupCount + 1);
        m_program.ignoresCase = expression.ignoresCase;
        emit(Operation::Save, 0);
        compile(expression.root);
        emit(Operation::Save, 1);
        emit(Operation::Match);
    }

    Program take() {
        findPrefix();
        findSuffix();
        return std::move(m_program);
    }

private:
    [[noreturn]] static void failAsTooLarge() {
        throw ExpressionError(
            "A regular expression is too large: its repetitions come to more than " +
            std::to_string(maxInstructions) + " parts");
    }
    int emit(Operation operation, int index = 0, char32_t character = 0) {
        if (m_program.instructions.size() >= maxInstructions)
            throw ExpressionError(
                "A regular expression is too large: its repetitions come to more "
                "than " +
                std::to_string(maxInstructions) + " instructions");
        m_program.instructions.push_back({operation, character, index, 0});
        return here() - 1;
    }
    int here() const { return static_cast<int>(m_program.instructions.size()); }
    void setTarget(int instruction, int target) {
        m_program.instructions[static_cast<std::size_t>(instruction)].target = target;
    }

    void compile(const Node& node);
    void compileAlternatives(const Node& node);
    void compileRepetition(const Node& node);
    void compileLoop(const Node& body, Operation split);
    void findPrefix();
    void findSuffix();

    Program m_program;
    std::size_t m_nodeCount = 0;
};

void Compiler::compile(const Node& node) {
    // Repetitions of nothing come to no instructions, but take time.
    if (++m_nodeCount > maxInstructions)
        failAsTooLarge();
    switch (node.type) {
        case Type::Empty:
            break;
        case Type::Character:
            emit(Operation::Character, 0, node.character);
            break;
        case Type::AnyButLineEnd:
            emit(Operation::AnyButLineEnd);
            break;
        case Type::Any:
            emit(Operation::Any);
            break;
        case Type::Class:
            emit(Operation::Class, static_cast<int>(m_program.classes.size()));
            m_program.classes.push_back(node.characters);
            break;
        case Type::Sequence:
            for (const Node& child : node.children)
                compile(child);
            break;
        case Type::Alternatives:
            compileAlternatives(node);
            break;
        case Type::Repetition:
            compileRepetition(node);
            break;
        case Type::Group:
            emit(Operation::Save, 2 * node.number);
            compile(node.children[0]);
            emit(Operation::Save, 2 * node.number + 1);
            break;
        case Type::BackReference:
            emit(Operation::BackReference, node.number);
            break;
        case Type::LookAhead:
        case Type::NegativeLookAhead: {
            const int look = emit(node.type == Type::LookAhead ? Operation::LookAhead
                                                               : Operation::NegativeLookAhead);
            compile(node.children[0]);
            emit(Operation::Match);
            setTarget(look, here());
            break;
        }
        case Type::TextBegin:
            emit(Operation::TextBegin);
            break;
        case Type::TextEnd:
            emit(Operation::TextEnd);
            break;
        case Type::LineBegin:
            emit(Operation::LineBegin);
            break;
        case Type::LineEnd:
            emit(Operation::LineEnd);
            break;
        case Type::WordBoundary:
            emit(Operation::WordBoundary);
            break;
        case Type::NoWordBoundary:
            emit(Operation::NoWordBoundary);
            break;
    }
}

void Compiler::compileAlternatives(const Node& node) {
    std::vector<int> jumps;
    for (std::size_t i = 0; i + 1 < node.children.size(); ++i) {
        const int split = emit(Operation::Split);
        compile(node.children[i]);
        jumps.push_back(emit(Operation::Jump));
        setTarget(split, here());
    }
    compile(node.children.back());
    for (const int jump : jumps)
        setTarget(jump, here());
}

void Compiler::compileRepetition(const Node& node) {
    const Node& body = node.children[0];
    const Operation split = node.isLazy ? Operation::SplitLazily : Operation::Split;
    for (int i = 0; i < node.minimum; ++i)
        compile(body);
    if (node.maximum < 0) {
        compileLoop(body, split);
        return;
    }
    std::vector<int> splits;
    for (int i = node.minimum; i < node.maximum; ++i) {
        splits.push_back(emit(split));
        compile(body);
    }
    for (const int each : splits)
        setTarget(each, here());
}

/// Any number of times. A round that takes nothing ends in failure, or it would go on for ever.
void Compiler::compileLoop(const Node& body, Operation split) {
    const int slot = m_program.slotCount++;
    const int begin = emit(split);
    emit(Operation::Save, slot);
    compile(body);
    emit(Operation::Progress, slot);
    setTarget(emit(Operation::Jump), begin);
    setTarget(begin, here());
}

void Compiler::findPrefix() {
    const auto isBound = [](const Program::Instruction& each) {
        return each.operation == Operation::TextBegin;
    };
    bool isBoundToStart = false;
    for (const Program::Instruction& each : m_program.instructions) {
        if (each.operation == Operation::Character && isBoundToStart)
            appendCodePoint(each.character, &m_program.prefix);
        else if (isBound(each) && m_program.prefix.empty())
            isBoundToStart = true;
        else if (each.operation != Operation::Save)
            break;
    }
}

void Compiler::findSuffix() {
    const std::vector<Program::Instruction>& all = m_program.instructions;
    int at = here() - 1;
    // The way from the end back to a place where several ways meet is the way of every match.
    std::vector<bool> isTarget(all.size() + 1, false);
    for (const Program::Instruction& each : all)
        isTarget[static_cast<std::size_t>(each.target)] = true;
    bool isBoundToEnd = false;
    std::u32string reversed;
    for (; at >= 0; --at) {
        const Program::Instruction& each = all[static_cast<std::size_t>(at)];
        if (each.operation == Operation::Character && isBoundToEnd)
            reversed.push_back(each.character);
        else if (each.operation == Operation::TextEnd && reversed.empty())
            isBoundToEnd = true;
        else if (each.operation != Operation::Save && each.operation != Operation::Match)
            break;
        if (isTarget[static_cast<std::size_t>(at)])
            break;
    }
    for (auto each = reversed.rbegin(); each != reversed.rend(); ++each)
        appendCodePoint(*each, &m_program.suffix);
}

}  // namespace

RegularExpressionProgram compile(const ParsedRegularExpression& expression) {
    return Compiler(expression).take();
}

}  // namespace Tamrix::Gherkin
