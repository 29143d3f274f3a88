// The grammar of clauses, the language of eval(type,'text').
//
// Bison, LALR. The nine conflicts are all between a shift and a reduction, and the shift wins:
//   + and - behind an expression go on with it, where they could begin the next one (4: in the first and in a later
//   expression);
//   ( behind a reference goes on with its path, where it could begin the next expression (4: behind the name and
//   behind a step, of a field and of this);
//   length(&$name): the ) ends the call, before the name is taken for a reference without a path (1).
// What the productions build stands in CZelClauseActions.
%define api.pure full
%define api.prefix {ZelClause}
%define api.value.type {UZelGrammarValue}
%parse-param {CZelClauseScanner &scanner} {CZelClauseActions &actions}
%lex-param {CZelClauseScanner &scanner}
%expect 9

%code top {
#include "oql/CZelClauseScanner.h"
}

%code requires {
#include "oql/UZelGrammarValueImpl.h"

class CZelClauseActions;
class CZelClauseScanner;
}

%code {
#include <cstring>

#include "clause/CZelClauseActionsImpl.h"
#include "oql/CZelGrammarActionsImpl.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000

namespace {

int ZelClauselex(UZelGrammarValue *value, CZelClauseScanner &scanner) {
    return scanner.NextToken(&value->m_token);
}

void ZelClauseerror(CZelClauseScanner &, CZelClauseActions &, const char *message) {
    const bool isSyntax = std::strcmp(message, "syntax error") == 0;
    ZelClauseFlexLexer::Message(isSyntax ? "parse error" : "parser stack overflow");
}

}  // namespace
}

%token <m_token.m_slice> __ZEL_C_AMPERSAND "&name"
%token <m_token.m_slice> __ZEL_C_DOLLAR "$name"
%token <m_token.m_slice> __ZEL_C_AMPDOLLAR "&$name"
%token <m_token.m_slice> __ZEL_C_OBJIDENT "->name"
%token <m_token.m_slice> __ZEL_C_ABS_VAL "text"
%token <m_token.m_int> __ZEL_C_INTNUM "integer"
%token <m_token.m_float> __ZEL_C_APPROXNUM "number"
%token __ZEL_C_CAT "cat" __ZEL_C_APPEND "append" __ZEL_C_APPEND_UNIQUE "appendunique" __ZEL_C_DELETE "delete"
%token __ZEL_C_LENGTH "length" __ZEL_C_LOOKUP "lookup" __ZEL_C_TIMESTAMP "timestamp"
%token __ZEL_C_REGEXPMATCH "regexpmatch" __ZEL_C_IPTOLONG "iptolong" __ZEL_C_LONGTOIP "longtoip"
%token __ZEL_C_THIS "this" __ZEL_C_RECORD_NAMES "record_names" __ZEL_C_RECORD_VALUES "record_values"
%token __ZEL_C_PLUS "+" __ZEL_C_MINUS "-" __ZEL_C_DIVIDE "/" __ZEL_C_TIMES "*"
%token __ZEL_C_COMMA "," __ZEL_C_LBRACK "(" __ZEL_C_RBRACK ")" __ZEL_C_OBJ_PTR "->"

%left "+" "-"
%left "*" "/"
%precedence SIGN

%destructor { delete $$; } <m_node>
%destructor { ZelDeleteBag<CZelCompiledClause>($$); } <m_nodeBag>

%type <m_node> expr record_statement statement sub_statement
%type <m_node> append_statement delete_statement length_statement timestamp_statement regexpmatch_statement
%type <m_node> iptolong_statement longtoip_statement lookup_statement cat_statement this_statement
%type <m_node> num_or_constant dollared entity_ref ampersanded entity_item cat_component
%type <m_nodeBag> opt_entity_list entity_list cat_component_list

%%

clauses:
      expr          { actions.AddResult($1); }
    | clauses expr  { actions.AddResult($2); }
    ;

expr:
      expr "+" expr        { $$ = actions.Compute($1, E_RCOPlus, $3); }
    | expr "-" expr        { $$ = actions.Compute($1, E_RCOMinus, $3); }
    | expr "/" expr        { $$ = actions.Compute($1, E_RCODivide, $3); }
    | expr "*" expr        { $$ = actions.Compute($1, E_RCOMultiply, $3); }
    | "+" expr %prec SIGN  { $$ = $2; }
    | "-" expr %prec SIGN  { $$ = actions.Negate($2); }
    | "(" expr ")"         { $$ = $2; }
    | statement
    | record_statement
    ;

record_statement:
      "record_values" "(" ")"  { $$ = actions.Record(E_RBTrue); }
    | "record_names" "(" ")"   { $$ = actions.Record(E_RBFalse); }
    ;

statement:
      append_statement
    | delete_statement
    | length_statement
    | timestamp_statement
    | regexpmatch_statement
    | iptolong_statement
    | longtoip_statement
    | lookup_statement
    | cat_statement
    | this_statement
    | sub_statement
    | "integer"  { $$ = actions.Integer($1); }
    | "number"   { $$ = actions.Real($1); }
    ;

sub_statement: entity_ref | dollared ;

cat_statement: "cat" "(" cat_component_list ")"  { $$ = actions.Cat($3); } ;

cat_component_list:
      cat_component                         { $$ = actions.AddTo(nullptr, $1); }
    | cat_component_list "," cat_component  { $$ = actions.AddTo($1, $3); }
    ;

append_statement:
      "append" "(" "&name" "," "&name" ")"        { $$ = actions.Append($3, $5, E_RBFalse); }
    | "appendunique" "(" "&name" "," "&name" ")"  { $$ = actions.Append($3, $5, E_RBTrue); }
    ;

delete_statement: "delete" "(" "&name" "," "&name" ")"  { $$ = actions.Delete($3, $5); } ;

length_statement:
      "length" "(" entity_ref ")"  { $$ = actions.Length($3); }
    | "length" "(" "&$name" ")"    { $$ = actions.Length(actions.Dollar($3)); }
    ;

timestamp_statement:
      "timestamp" "(" cat_component ")"             { $$ = actions.Timestamp($3); }
    | "timestamp" "(" cat_component "," "text" ")"  { $$ = actions.Timestamp($3, $5); }
    ;

regexpmatch_statement: "regexpmatch" "(" cat_component "," "text" ")"  { $$ = actions.RegExpMatch($3, $5); } ;

iptolong_statement: "iptolong" "(" cat_component ")"  { $$ = actions.IpToLong($3); } ;

longtoip_statement:
      "longtoip" "(" cat_component ")"  { $$ = actions.LongToIp($3); }
    | "longtoip" "(" "integer" ")"      { $$ = actions.LongToIp(actions.Integer($3)); }
    ;

lookup_statement:
      "lookup" "(" cat_component "," ampersanded ")"                    { $$ = actions.Lookup($3, $5, nullptr); }
    | "lookup" "(" cat_component "," ampersanded "," cat_component ")"  { $$ = actions.Lookup($3, $5, $7); }
    ;

this_statement:
      "this" "(" num_or_constant "," num_or_constant "," num_or_constant ")" "->name" opt_entity_list
        { $$ = actions.This($3, $5, $7, $9, $10); }
    | "this" "->name" opt_entity_list
        { $$ = actions.This(actions.Integer(0), actions.Integer(0), actions.Integer(1), $2, $3); }
    ;

num_or_constant:
      "integer"  { $$ = actions.Integer($1); }
    | dollared
    ;

dollared: "$name"  { $$ = actions.Dollar($1); } ;

entity_ref: ampersanded opt_entity_list  { $$ = actions.Reference($1, $2); } ;

ampersanded:
      "&name"   { $$ = actions.Name($1); }
    | "&$name"  { $$ = actions.Dollar($1); }
    ;

opt_entity_list:
      %empty       { $$ = nullptr; }
    | entity_list
    ;

entity_list:
      entity_item              { $$ = actions.AddTo(nullptr, $1); }
    | entity_list entity_item  { $$ = actions.AddTo($1, $2); }
    ;

entity_item:
      "->name"                         { $$ = actions.Name($1); }
    | "(" "integer" ")"                { $$ = actions.Integer($2); }
    | "(" "$name" ")"                  { $$ = actions.Dollar($2); }
    | "(" enter_reference entity_ref ")"  { actions.LeaveReference(); $$ = $3; }
    | "->" "$name"                     { $$ = actions.Dollar($2); }
    ;

enter_reference: %empty  { if (!actions.EnterReference()) { ZelClauseerror(scanner, actions, "syntax error"); YYABORT; } } ;

cat_component:
      entity_ref
    | dollared
    | this_statement
    | "text"  { $$ = actions.Text($1); }
    ;
