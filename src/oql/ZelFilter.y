// The grammar of a condition that stands alone: that of statements from the conditions down, with other rules
// for computed names and for in.
//
// Bison, LALR, without conflicts. What the productions build stands in CZelFilterActions.
//
// eval(char, ...) is always a computed name; every other eval is a value.
%define api.pure full
%define api.prefix {ZelFilter}
%define api.value.type {UZelGrammarValue}
%parse-param {CZelFilterScanner &scanner} {CZelFilterActions &actions}
%lex-param {CZelFilterScanner &scanner}
%expect 0

%code top {
#include "oql/CZelFilterScanner.h"
}

%code requires {
#include "oql/UZelGrammarValueImpl.h"

class CZelFilterScanner;
class CZelFilterActions;
}

%code {
#include <memory>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelVBList.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelFilterActionsImpl.h"
#include "oql/CZelOrder.h"
#include "oql/CZelQuery.h"
#include "store/CZelBoolean.h"
#include "store/CZelColDef.h"
#include "store/CZelFilter.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000

namespace {

int ZelFilterlex(UZelGrammarValue *value, CZelFilterScanner &scanner) {
    return scanner.NextToken(&value->m_token);
}

// The caller reports the error with its place.
void ZelFiltererror(CZelFilterScanner &, CZelFilterActions &, const char *) {}

}  // namespace
}

%token <m_token.m_slice> __ZEL_IDENT "name"
%token <m_token.m_slice> __ZEL_STRING "string"
%token <m_token.m_int> __ZEL_INTNUM "integer"
%token <m_token.m_double> __ZEL_APPROXNUM "number"
%token __ZEL_OR "or" __ZEL_AND "and" __ZEL_NONE "none" __ZEL_NOT "not" __ZEL_EQ "=" __ZEL_NEQ "<>" __ZEL_LT "<"
%token __ZEL_GT ">" __ZEL_LTE "<=" __ZEL_GTE ">=" __ZEL_UMINUS __ZEL_ALL "all" __ZEL_FUNC "avg" __ZEL_ANY "any"
%token __ZEL_ARRAY "array" __ZEL_ASC "asc" __ZEL_BETWEEN "between" __ZEL_BY "by" __ZEL_CHARACTER "char"
%token __ZEL_DATA "data" __ZEL_DESC "desc" __ZEL_DISTINCT "distinct" __ZEL_ESCAPE "escape" __ZEL_EXISTS "exists"
%token __ZEL_EVAL "eval" __ZEL_FLOAT "float" __ZEL_FROM "from" __ZEL_GROUP "group" __ZEL_HAVING "having"
%token __ZEL_IN "in" __ZEL_INTEGER "int" __ZEL_IPADDRESS "ipaddress" __ZEL_IS "is" __ZEL_LIKE "like"
%token __ZEL_LIST "list" __ZEL_LOCATOR "locator" __ZEL_LONG "long" __ZEL_LONGLONG "long64" __ZEL_NULLX "null"
%token __ZEL_OBJECT "object" __ZEL_OBJPOINTER "->" __ZEL_ORDER "order" __ZEL_SELECT "select"
%token __ZEL_SMALLINT "smallint" __ZEL_SOME "some" __ZEL_TIME "time" __ZEL_TEXT "text" __ZEL_TYPE "type"
%token __ZEL_VARCHAR "varchar" __ZEL_WHERE "where" __ZEL_NEXT "next"
%left "or"
%left "and"
%precedence "not"
%left '+' '-'
%left '*' '/'
%precedence __ZEL_UMINUS

%destructor { delete $$; } <m_atom> <m_atoms> <m_bindings> <m_binding> <m_expr> <m_entity> <m_clause> <m_column>
%destructor { delete $$; } <m_list> <m_filter> <m_comparison> <m_query>
%destructor { ZelDeleteBag<CZelExpr>($$); } <m_exprBag>
%destructor { ZelDeleteBag<CZelDbEntity>($$); } <m_entityBag>
%destructor { ZelDeleteBag<CZelOrder>($$); } <m_orderBag>
%destructor { ZelDeleteStack<CZelDbEntity>($$); } <m_entityStack>
%destructor { delete $$; } <m_order>

%type <m_filter> search_condition opt_having_clause opt_where_clause
%type <m_comparison> predicate between_predicate like_predicate in_predicate
%type <m_oper> comparison
%type <m_query> subquery table_exp
%type <m_atom> opt_escape atom simple_atom list_whole object_whole
%type <m_atoms> atom_list atom_commalist
%type <m_bindings> varbind_list
%type <m_binding> varbind
%type <m_expr> scalar_exp composite_exp lower_bound multi_column column_name object_partial list_partial function_ref
%type <m_exprBag> selection scalar_exp_commalist
%type <m_entity> table column_ref named_ref
%type <m_entityStack> from_clause table_commalist
%type <m_entityBag> column_ref_commalist opt_group_by_clause
%type <m_orderBag> opt_order_by_clause ordering_spec_commalist
%type <m_order> ordering_spec
%type <m_direction> opt_asc_desc
%type <m_boolean> opt_all_distinct
%type <m_list> col_name_partial
%type <m_clause> eval_ref
%type <m_column> data_type other_type
%type <m_expr> in_predicate_expr
%type <m_clause> searchable_eval_ref

%%

filter: search_condition  { actions.SetResult($1); } ;

/* --- conditions --- */

search_condition:
      search_condition "or" search_condition   { $$ = actions.Join($1, E_RAOr, $3); }
    | search_condition "and" search_condition  { $$ = actions.Join($1, E_RAAnd, $3); }
    | "not" search_condition                   { $$ = actions.Join(nullptr, E_RANot, $2); }
    | '(' search_condition ')'                 { $$ = $2; }
    | predicate                                { $$ = actions.Kernel($1); }
    ;

predicate:
      scalar_exp comparison scalar_exp  { $$ = actions.Compare($1, $2, $3); }
    | scalar_exp comparison subquery    { $$ = actions.Compare($1, $2, $3); }
    | scalar_exp comparison any_all_some subquery  { $$ = actions.Compare($1, $2, $4); }
    | between_predicate
    | like_predicate
    | in_predicate
    | column_ref "is" "not" "null"  { $$ = actions.TestForNull($1, E_ROIsNotNull); }
    | column_ref "is" "null"        { $$ = actions.TestForNull($1, E_ROIsNull); }
    | "exists" subquery             { $$ = actions.Exists($2); }
    | "none"                        { $$ = new CZelBoolean(); }
    ;

comparison:
      "="   { $$ = E_ROEqual; }
    | "<>"  { $$ = E_RONotEqual; }
    | "<"   { $$ = E_ROLess; }
    | ">"   { $$ = E_ROGreater; }
    | "<="  { $$ = E_ROLessEqual; }
    | ">="  { $$ = E_ROGreaterEqual; }
    ;

any_all_some: "any" | "all" | "some" ;

/* A list alone is both bounds. */
between_predicate:
      scalar_exp "not" "between" list_whole
          { $$ = actions.Compare($1, E_RONotBetween, actions.AtomValue($4)); }
    | scalar_exp "between" list_whole
          { $$ = actions.Compare($1, E_ROBetween, actions.AtomValue($3)); }
    | scalar_exp "not" "between" lower_bound "and" scalar_exp
          { $$ = actions.Between($1, E_RONotBetween, $4, $6); }
    | scalar_exp "between" lower_bound "and" scalar_exp
          { $$ = actions.Between($1, E_ROBetween, $3, $5); }
    ;

lower_bound:
      simple_atom  { $$ = actions.AtomValue($1); }
    | composite_exp
    ;

/* A literal alone is a pattern; NULL as a pattern gives no predicate. */
like_predicate:
      scalar_exp "not" "like" atom opt_escape  { $$ = actions.LikeAtom($1, E_RONotLike, $4, $5); }
    | scalar_exp "like" atom opt_escape        { $$ = actions.LikeAtom($1, E_ROLike, $3, $4); }
    | scalar_exp "not" "like" composite_exp    { $$ = actions.Compare($1, E_RONotLike, $4); }
    | scalar_exp "like" composite_exp          { $$ = actions.Compare($1, E_ROLike, $3); }
    ;

opt_escape:
      %empty         { $$ = nullptr; }
    | "escape" atom  { $$ = $2; }
    ;

in_predicate:
      scalar_exp "not" "in" '(' subquery ')'        { $$ = actions.Compare($1, E_RONotIn, $5); }
    | scalar_exp "in" '(' subquery ')'              { $$ = actions.Compare($1, E_ROIn, $4); }
    | scalar_exp "not" "in" '(' atom_commalist ')'  { $$ = actions.InAtoms($1, E_RONotIn, $5); }
    | scalar_exp "in" '(' atom_commalist ')'        { $$ = actions.InAtoms($1, E_ROIn, $4); }
    | scalar_exp "not" "in" list_whole              { $$ = actions.Compare($1, E_RONotIn, actions.AtomValue($4)); }
    | scalar_exp "in" list_whole                    { $$ = actions.Compare($1, E_ROIn, actions.AtomValue($3)); }
    | scalar_exp "not" "in" in_predicate_expr       { $$ = actions.Compare($1, E_RONotIn, $4); }
    | scalar_exp "in" in_predicate_expr             { $$ = actions.Compare($1, E_ROIn, $3); }
    ;

in_predicate_expr:
      searchable_eval_ref        { $$ = actions.ClauseValue($1); }
    | column_ref                 { $$ = actions.EntityValue($1); }
    | '(' in_predicate_expr ')'  { $$ = $2; }
    ;

searchable_eval_ref:
      "eval" '(' "list" type data_type ',' "string" ')'
          { actions.LeaveType(); $$ = actions.Clause(actions.Type(E_RDTList, $5), $7); }
    | "eval" '(' "array" type data_type ',' "string" ')'
          { actions.LeaveType(); $$ = actions.Clause(actions.Type(E_RDTList, $5), $7); }
    | "eval" '(' "object" type data_type ',' "string" ')'
          { actions.LeaveType(); $$ = actions.Clause(actions.Type(E_RDTObject, $5), $7); }
    ;

atom_commalist:
      atom                     { $$ = actions.AddAtom(nullptr, $1); }
    | atom_commalist ',' atom  { $$ = actions.AddAtom($1, $3); }
    ;

subquery:
      open_subquery opt_all_distinct selection table_exp ')'
          { actions.LeaveQuery(); $$ = actions.Select($4, $2, $3); }
    ;

open_subquery:
      '(' "select"  { if (!actions.EnterQuery()) YYABORT; }
    ;

/* --- expressions --- */

scalar_exp:
      named_ref                  { $$ = actions.EntityValue($1); }
    | eval_ref                   { $$ = actions.ClauseValue($1); }
    | function_ref
    | '(' scalar_exp ')'         { $$ = $2; }
    | '+' scalar_exp %prec __ZEL_UMINUS  { $$ = actions.Signed($2, false); }
    | '-' scalar_exp %prec __ZEL_UMINUS  { $$ = actions.Signed($2, true); }
    | scalar_exp '+' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::REAddVal, $3); }
    | scalar_exp '-' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::RESubVal, $3); }
    | scalar_exp '*' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::REMulVal, $3); }
    | scalar_exp '/' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::REDivVal, $3); }
    | "string"                   { $$ = actions.TextValue($1); }
    | "integer"                  { $$ = actions.Value($1); }
    | "number"                   { $$ = actions.RealValue($1); }
    | "null"                     { $$ = actions.AtomValue(nullptr); }
    | object_whole               { $$ = actions.AtomValue($1); }
    | list_whole                 { $$ = actions.AtomValue($1); }
    ;

/* All but a literal alone. */
composite_exp:
      named_ref                  { $$ = actions.EntityValue($1); }
    | eval_ref                   { $$ = actions.ClauseValue($1); }
    | function_ref
    | '(' scalar_exp ')'         { $$ = $2; }
    | '+' scalar_exp %prec __ZEL_UMINUS  { $$ = actions.Signed($2, false); }
    | '-' scalar_exp %prec __ZEL_UMINUS  { $$ = actions.Signed($2, true); }
    | scalar_exp '+' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::REAddVal, $3); }
    | scalar_exp '-' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::RESubVal, $3); }
    | scalar_exp '*' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::REMulVal, $3); }
    | scalar_exp '/' scalar_exp  { $$ = actions.Fold($1, &CZelExpr::REDivVal, $3); }
    ;

scalar_exp_commalist:
      scalar_exp                           { $$ = actions.AddTo(nullptr, $1); }
    | scalar_exp_commalist ',' scalar_exp  { $$ = actions.AddTo($1, $3); }
    ;

/* Taken, but nothing is computed. */
function_ref:
      "avg" '(' '*' ')'                    { $$ = new CZelExpr(); }
    | "avg" '(' "distinct" column_ref ')'  { delete $4; $$ = new CZelExpr(); }
    | "avg" '(' "all" scalar_exp ')'       { delete $4; $$ = new CZelExpr(); }
    | "avg" '(' scalar_exp ')'             { delete $3; $$ = new CZelExpr(); }
    ;

/* --- queries --- */

opt_all_distinct:
      %empty      { $$ = E_RBTrue; }
    | "all"       { $$ = E_RBTrue; }
    | "distinct"  { $$ = E_RBFalse; }
    ;

selection:
      scalar_exp_commalist
    | '*'  { $$ = nullptr; }
    ;

table_exp:
      from_clause opt_where_clause opt_group_by_clause opt_having_clause opt_order_by_clause
          { $$ = actions.Query($1, $2, $3, $4, $5); }
    ;

from_clause: "from" table_commalist  { $$ = $2; } ;

table_commalist:
      table                      { $$ = actions.AddTable(nullptr, $1); }
    | table_commalist ',' table  { $$ = actions.AddTable($1, $3); }
    ;

opt_where_clause:
      %empty                   { $$ = nullptr; }
    | "where" search_condition  { $$ = $2; }
    ;

opt_group_by_clause:
      %empty                            { $$ = nullptr; }
    | "group" "by" column_ref_commalist  { $$ = $3; }
    ;

column_ref_commalist:
      column_ref                           { $$ = actions.AddTo(nullptr, $1); }
    | column_ref_commalist ',' column_ref  { $$ = actions.AddTo($1, $3); }
    ;

opt_having_clause:
      %empty                    { $$ = nullptr; }
    | "having" search_condition  { $$ = $2; }
    ;

opt_order_by_clause:
      %empty                               { $$ = nullptr; }
    | "order" "by" ordering_spec_commalist  { $$ = actions.OrderList($3); }
    ;

ordering_spec_commalist:
      ordering_spec                              { $$ = actions.AddTo(nullptr, $1); }
    | ordering_spec_commalist ',' ordering_spec  { $$ = actions.AddTo($1, $3); }
    ;

/* An order by position is taken and left out. */
ordering_spec:
      column_ref opt_asc_desc  { $$ = new CZelOrder($1, $2); }
    | "integer" opt_asc_desc   { $$ = nullptr; }
    ;

opt_asc_desc:
      %empty  { $$ = E_RODAscending; }
    | "asc"   { $$ = E_RODAscending; }
    | "desc"  { $$ = E_RODDescending; }
    ;

/* --- references --- */

table:
      multi_column                   { $$ = new CZelDbEntity(nullptr, $1, nullptr); }
    | multi_column '.' multi_column  { $$ = new CZelDbEntity($1, $3, nullptr); }
    | "string" '.' "string"
          { $$ = new CZelDbEntity(actions.QuotedName($1), actions.QuotedName($3), nullptr); }
    ;

column_ref: named_ref ;

named_ref:
      column_name  { $$ = new CZelDbEntity(nullptr, nullptr, $1); }
    | multi_column '.' multi_column  { $$ = new CZelDbEntity(nullptr, $1, $3); }
    | multi_column '.' multi_column '.' multi_column  { $$ = new CZelDbEntity($1, $3, $5); }
    | multi_column col_name_partial
          { $$ = actions.WithKeys(new CZelDbEntity(nullptr, nullptr, $1), $2); }
    | multi_column '.' multi_column col_name_partial
          { $$ = actions.WithKeys(new CZelDbEntity(nullptr, $1, $3), $4); }
    | multi_column '.' multi_column '.' multi_column col_name_partial
          { $$ = actions.WithKeys(new CZelDbEntity($1, $3, $5), $6); }
    ;

multi_column: column_name ;

/* An eval of char is always a computed name, any other one a value. */
column_name:
      "name"  { $$ = actions.Name($1); }
    | "eval" '(' "char" ',' "string" ')'
          { $$ = actions.ClauseValue(actions.Clause(actions.Type(E_RDTText), $5)); }
    ;

col_name_partial:
      object_partial                   { $$ = actions.AddKey(nullptr, $1); }
    | list_partial                     { $$ = actions.AddKey(nullptr, $1); }
    | col_name_partial object_partial  { $$ = actions.AddKey($1, $2); }
    | col_name_partial list_partial    { $$ = actions.AddKey($1, $2); }
    ;

object_partial: "->" multi_column  { $$ = $2; } ;

list_partial:
      '(' "integer" ')'  { $$ = actions.Key($2); }
    | '(' "next" ')'     { $$ = actions.Key(E_RLUNext); }
    | '(' ')'            { $$ = actions.Key(E_RLUAll); }
    | '(' '*' ')'        { $$ = actions.Key(E_RLUAll); }
    | '(' "all" ')'      { $$ = actions.Key(E_RLUAll); }
    | '(' "any" ')'      { $$ = actions.Key(E_RLUAny); }
    | '(' "eval" '(' "int" ',' "string" ')' ')'
          { $$ = actions.ClauseValue(actions.Clause(actions.Type(E_RDTInt), $6)); }
    ;

eval_ref: "eval" '(' other_type ',' "string" ')'  { $$ = actions.Clause($3, $5); } ;

/* --- types --- */

data_type:
      "char"  { $$ = actions.Type(E_RDTText); }
    | other_type
    ;

other_type:
      "char" '(' "integer" ')'     { $$ = actions.Type(E_RDTText); }
    | "varchar" '(' "integer" ')'  { $$ = actions.Type(E_RDTText); }
    | "text"                       { $$ = actions.Type(E_RDTText); }
    | "int"                        { $$ = actions.Type(E_RDTInt); }
    | "smallint"                   { $$ = actions.Type(E_RDTInt); }
    | "int" type data_type         { actions.LeaveType(); $$ = actions.Type(E_RDTInt, $3); }
    | "long"                       { $$ = actions.Type(E_RDTLong); }
    | "time"                       { $$ = actions.Type(E_RDTLong); }
    | "ipaddress"                  { $$ = actions.Type(E_RDTLong); }
    | "long64"                     { $$ = actions.Type(E_RDTLong64); }
    | "float"                      { $$ = actions.Type(E_RDTFloat); }
    | "locator"                    { $$ = actions.Type(E_RDTLocator); }
    | "data"                       { $$ = actions.Type(E_RDTData); }
    | "list" type data_type        { actions.LeaveType(); $$ = actions.Type(E_RDTList, $3); }
    | "array" type data_type       { actions.LeaveType(); $$ = actions.Type(E_RDTList, $3); }
    | "object" type data_type      { actions.LeaveType(); $$ = actions.Type(E_RDTObject, $3); }
    | "name"                       { $$ = actions.NamedType($1); }
    ;

type: "type"  { if (!actions.EnterType()) YYABORT; } ;

/* --- literals --- */

atom:
      simple_atom
    | list_whole
    ;

simple_atom:
      "string"        { $$ = actions.Text($1); }
    | "integer"       { $$ = new CZelAtom($1); }
    | "number"        { $$ = actions.Real($1); }
    | "null"          { $$ = nullptr; }
    | object_whole
    ;

list_whole:
      open_list atom_list ']'  { actions.LeaveLiteral(); $$ = actions.ListAtom($2); }
    | open_list ']'            { actions.LeaveLiteral(); $$ = actions.ListAtom(nullptr); }
    ;

atom_list:
      atom                { $$ = actions.AddAtom(nullptr, $1); }
    | atom_list ',' atom  { $$ = actions.AddAtom($1, $3); }
    ;

object_whole:
      open_object varbind_list '}'  { actions.LeaveLiteral(); $$ = actions.ObjectAtom($2); }
    | open_object '}'               { actions.LeaveLiteral(); $$ = actions.ObjectAtom(nullptr); }
    ;

varbind_list:
      varbind                   { $$ = actions.AddBinding(nullptr, $1); }
    | varbind_list ',' varbind  { $$ = actions.AddBinding($1, $3); }
    ;

varbind: "name" "=" atom  { $$ = actions.Binding($1, $3); } ;

open_list: '['    { if (!actions.EnterLiteral()) YYABORT; } ;
open_object: '{'  { if (!actions.EnterLiteral()) YYABORT; } ;
