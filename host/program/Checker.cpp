#include "host/program/Checker.h"

#include "host/language/Names.h"

#include "host/program/Types.h"
#include "host/program/Wording.h"

#include <algorithm>
#include <utility>

namespace host::program {

namespace {

/// The method by which a class gives its own shared object, if one of the plug-in's does.
std::optional<SharedMethod> sharedObject(const ClassTable &classes) {
    for (const HostClass *type : classes.registered())
        for (const Method &method : type->sharedMethods)
            if (method.parsed.parameters.empty() && method.parsed.result == typeNamed(type->name))
                return SharedMethod{type, &method};
    return std::nullopt;
}

/// Whether evaluating it does something, so that its value may be dropped.
bool isCall(const Expression &expression) {
    if (const auto *name = std::get_if<Name>(&expression.what))
        return !std::holds_alternative<Slot>(name->meaning);
    if (const auto *member = std::get_if<Member>(&expression.what))
        return !std::holds_alternative<const Property *>(member->meaning) &&
               !std::holds_alternative<const Constant *>(member->meaning);
    return std::holds_alternative<Create>(expression.what);
}

} // namespace

Checker::Checker(const ClassTable &classes, Form form) : around_{.classes = classes, .form = form} {
    if (form == Form::typed)
        around_.implicitObject = sharedObject(classes);
}

std::vector<Diagnostic> Checker::check(Program &program, bool isWhole) {
    const Scopes scopesBefore = around_.scopes;
    const auto proceduresBefore = around_.procedures;
    around_.errors.clear();
    for (const auto &procedure : program.procedures)
        declareProcedure(*procedure);
    checkStatements(program.main.statements);
    for (const auto &procedure : program.procedures)
        checkProcedure(*procedure);
    std::vector<Diagnostic> errors = std::exchange(around_.errors, {});
    if (!errors.empty() || !isWhole) {
        around_.scopes = scopesBefore;
        around_.procedures = proceduresBefore;
    }
    return errors;
}

void Checker::resolve(TypeName &name) {
    if (name.type.kind != TypeKind::object)
        return;
    const HostClass *type = around_.classes.find(name.type.className);
    if (type != nullptr && !type->isInternal)
        return;
    std::vector<std::string> names = namesOfTypes();
    for (const HostClass *known : around_.classes.all())
        if (!known->isInternal)
            names.push_back(known->name);
    around_.report(name.at, "there is no type " + name.type.className +
                                nearestAmong(names, name.type.className));
    name.type = unknownType();
}

Slot Checker::declare(const Identifier &name, const Type &type, bool isConstant) {
    // Who types line after line may declare a name once more.
    if (around_.form == Form::typed)
        around_.scopes.forget(name.name);
    if (const Declared *declared = around_.scopes.declare(name, type, isConstant))
        return declared->slot;
    const Declared *before = around_.scopes.findInBlock(name.name);
    around_.report(name.at, name.name + " is declared already, in line " +
                                std::to_string(before->name.at.line));
    return before->slot;
}

// Procedures and blocks

void Checker::declareProcedure(Procedure &procedure) {
    for (ProgramParameter &parameter : procedure.parameters)
        resolve(parameter.type);
    if (procedure.result)
        resolve(*procedure.result);
    const std::string name = foldedName(procedure.name.name);
    const auto [place, added] = around_.procedures.try_emplace(name, &procedure);
    if (added)
        return;
    if (around_.form == Form::file)
        around_.report(procedure.name.at, procedure.name.name + " is declared already, in line " +
                                              std::to_string(place->second->name.at.line));
    place->second = &procedure;
}

void Checker::checkProcedure(Procedure &procedure) {
    around_.scopes.openProcedure();
    procedure_ = &procedure;
    bool hasDefault = false;
    for (ProgramParameter &parameter : procedure.parameters) {
        if (parameter.defaultValue != nullptr) {
            expressions_.constantValue(*parameter.defaultValue);
            expressions_.expect(*parameter.defaultValue, parameter.type.type, parameter.name.name);
        } else if (hasDefault) {
            around_.report(parameter.name.at,
                           parameter.name.name + " needs a default, as the parameter before it");
        }
        hasDefault = parameter.defaultValue != nullptr;
        declare(parameter.name, parameter.type.type);
    }
    checkBlock(procedure.body);
    procedure_ = nullptr;
    procedure.slotCount = around_.scopes.closeProcedure();
}

void Checker::checkBlock(Block &block) {
    around_.scopes.openBlock();
    checkStatements(block.statements);
    around_.scopes.closeBlock(block);
}

void Checker::checkStatements(std::vector<Statement> &statements) {
    for (Statement &statement : statements)
        std::visit([&](auto &what) { check(what, statement.at); }, statement.what);
}

// Statements

void Checker::check(Declare &statement, Position /*at*/) {
    // "As New" names the class in the value too, where it is told when it is unknown.
    const auto *made =
        statement.value == nullptr ? nullptr : std::get_if<Create>(&statement.value->what);
    if (made != nullptr && made->className.at == statement.type.at &&
        around_.classes.find(made->className.name) == nullptr)
        statement.type.type = unknownType();
    resolve(statement.type);
    bool valueIsChecked = false;
    for (Variable &variable : statement.variables) {
        Type type = statement.type.type;
        type.isArray |= variable.isArray;
        if (variable.upperBound != nullptr)
            expressions_.expect(*variable.upperBound, simpleType(TypeKind::integer),
                                "an upper bound");
        if (statement.value != nullptr && !std::exchange(valueIsChecked, true))
            expressions_.expect(*statement.value, type, variable.name.name);
        else if (statement.value != nullptr &&
                 !fits(around_.classes, statement.value->valueType(), type))
            around_.report(variable.name.at, variable.name.name + " is " + shown(type) + ", not " +
                                                 shown(statement.value->type));
        variable.slot = declare(variable.name, type);
    }
}

void Checker::check(DeclareConstant &statement, Position /*at*/) {
    expressions_.constantValue(*statement.value);
    statement.slot = declare(statement.name, statement.value->valueType(), true);
}

void Checker::check(ReDim &statement, Position /*at*/) {
    expressions_.expect(*statement.variable.upperBound, simpleType(TypeKind::integer),
                        "an upper bound");
    const Identifier &name = statement.variable.name;
    const Declared *declared = around_.scopes.find(name.name);
    if (declared == nullptr || !declared->type.isArray || declared->isConstant) {
        around_.report(name.at, name.name + " is no array; Dim declares one");
        return;
    }
    statement.variable.slot = declared->slot;
    statement.elementType = elementOf(declared->type);
}

void Checker::check(Assign &statement, Position /*at*/) {
    expressions_.assignment(*statement.target, *statement.value);
}

void Checker::check(Evaluate &statement, Position at) {
    expressions_.check(*statement.expression);
    if (around_.form == Form::file && !isCall(*statement.expression))
        around_.report(at, "nothing is done with this value");
}

void Checker::check(If &statement, Position /*at*/) {
    for (Branch &branch : statement.branches) {
        if (branch.condition != nullptr)
            expressions_.condition(*branch.condition);
        checkBlock(branch.body);
    }
    checkBlock(statement.otherwise);
}

/// Declared in the block that is open: the loop has one around its body.
void Checker::loopVariable(LoopVariable &variable) {
    if (variable.declared) {
        resolve(*variable.declared);
        variable.type = variable.declared->type;
        variable.slot = declare(variable.name, variable.type);
        return;
    }
    const Declared *declared = around_.scopes.find(variable.name.name);
    variable.type = {.kind = TypeKind::variant};
    if (declared == nullptr || declared->isConstant) {
        around_.report(variable.name.at, variable.name.name + " is no variable; " +
                                             variable.name.name + " As ... declares one");
        declare(variable.name, variable.type);
        return;
    }
    variable.type = declared->type;
    variable.slot = declared->slot;
}

void Checker::check(For &statement, Position /*at*/) {
    const Type number = simpleType(TypeKind::real);
    for (const ExpressionPtr *bound : {&statement.from, &statement.to, &statement.step})
        if (*bound != nullptr)
            expressions_.expect(**bound, number, "a bound of the loop");
    Block around;
    around_.scopes.openBlock();
    if (!statement.variable.name.name.empty())
        loopVariable(statement.variable);
    if (!isNumber(statement.variable.type) && !isVariant(statement.variable.type))
        around_.report(statement.variable.name.at,
                       "a loop counts in numbers, not in " + shown(statement.variable.type));
    if (statement.step != nullptr && isInteger(statement.variable.type) &&
        !isInteger(statement.step->valueType()) && !isVariant(statement.step->valueType()))
        around_.report(statement.step->at, "a loop that counts in Integers has no step of " +
                                               shown(statement.step->type));
    ++forLoops_;
    checkBlock(statement.body);
    --forLoops_;
    around_.scopes.closeBlock(around);
}

void Checker::check(ForEach &statement, Position /*at*/) {
    Type element{.kind = TypeKind::variant};
    if (statement.collection != nullptr) {
        expressions_.value(*statement.collection);
        const Type &type = statement.collection->valueType();
        if (type.isArray)
            element = elementOf(type);
        else if (!(type == unknownType()))
            around_.report(statement.collection->at,
                           "For Each goes through an array, not " + shown(type));
    }
    Block around;
    around_.scopes.openBlock();
    if (!statement.variable.name.name.empty())
        loopVariable(statement.variable);
    if (!fits(around_.classes, element, statement.variable.type))
        around_.report(statement.variable.name.at, statement.variable.name.name + " is " +
                                                       shown(statement.variable.type) +
                                                       ", but the elements are " + shown(element));
    ++forLoops_;
    checkBlock(statement.body);
    --forLoops_;
    around_.scopes.closeBlock(around);
}

void Checker::check(While &statement, Position /*at*/) {
    if (statement.condition != nullptr)
        expressions_.condition(*statement.condition);
    ++whileLoops_;
    checkBlock(statement.body);
    --whileLoops_;
}

void Checker::check(Exit &statement, Position at) {
    if (statement.what == Leaving::forLoop && forLoops_ == 0)
        around_.report(at, "Exit For stands in no For");
    if (statement.what == Leaving::whileLoop && whileLoops_ == 0)
        around_.report(at, "Exit While stands in no While");
    if (statement.what != Leaving::procedure)
        return;
    const bool fitting =
        procedure_ != nullptr && procedure_->result.has_value() == statement.isFunction;
    if (!fitting)
        around_.report(at, statement.isFunction ? "Exit Function stands in no Function"
                                                : "Exit Sub stands in no Sub");
}

void Checker::check(Return &statement, Position at) {
    const bool wantsValue = procedure_ != nullptr && procedure_->result.has_value();
    if (statement.value == nullptr) {
        if (wantsValue)
            around_.report(at, "a Function returns a value");
        return;
    }
    if (wantsValue) {
        expressions_.expect(*statement.value, procedure_->result->type,
                            "the value of " + procedure_->name.name);
        return;
    }
    expressions_.value(*statement.value);
    around_.report(statement.value->at,
                   procedure_ == nullptr ? "a program returns no value" : "a Sub returns no value");
}

void Checker::check(Try &statement, Position at) {
    checkBlock(statement.body);
    for (Catch &clause : statement.catches) {
        clause.type = around_.classNamed(clause.className);
        const HostClass *exceptions = around_.classes.findAny("RuntimeException");
        if (clause.type != nullptr && !clause.type->isKindOf(*exceptions))
            around_.report(clause.className.at, clause.type->name + " is no class of exceptions");
        Block around;
        around_.scopes.openBlock();
        if (clause.name)
            clause.slot = declare(*clause.name, typeNamed(clause.className.name));
        checkBlock(clause.body);
        around_.scopes.closeBlock(around);
    }
    checkBlock(statement.finally);
    if (statement.catches.empty() && statement.finally.statements.empty())
        around_.report(at, "Try has no Catch and no Finally");
}

void Checker::check(Raise &statement, Position /*at*/) {
    expressions_.exception(*statement.exception);
}

void Checker::check(Print &statement, Position /*at*/) {
    for (const ExpressionPtr &value : statement.values)
        expressions_.value(*value);
}

void Checker::check(Assert &statement, Position /*at*/) {
    expressions_.condition(*statement.condition);
    if (statement.text != nullptr)
        expressions_.expect(*statement.text, simpleType(TypeKind::string), "the text of Assert");
}

} // namespace host::program
