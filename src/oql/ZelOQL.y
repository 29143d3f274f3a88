// The grammar of OQL statements.
//
// Bison, LALR, without conflicts. What the productions build stands in CZelStatementActions.
//
// Where a text has two readings, the rules leave one: a lone eval(...) is a value, also behind in, and a column's
// name only where no value can stand; a literal alone behind like is the pattern; a list alone behind between
// is both bounds.
%define api.pure full
%define api.prefix {ZelOQL}
%define api.value.type {UZelGrammarValue}
%parse-param {CZelOQLScanner &scanner} {CZelStatementActions &actions}
%lex-param {CZelOQLScanner &scanner}
%expect 0

%code top {
#include "oql/CZelOQLScanner.h"
}

%code requires {
#include "oql/UZelGrammarValueImpl.h"

class CZelOQLScanner;
class CZelStatementActions;
}

%code {
#include <memory>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelEscape.h"
#include "oql/CZelAssign.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelDropIndex.h"
#include "oql/CZelDropObject.h"
#include "oql/CZelExit.h"
#include "oql/CZelExpr.h"
#include "oql/CZelExprComplex.h"
#include "oql/CZelExprComplexVarBind.h"
#include "oql/CZelIndex.h"
#include "oql/CZelInsert.h"
#include "oql/CZelOrder.h"
#include "oql/CZelQryInsert.h"
#include "oql/CZelQuery.h"
#include "oql/CZelStatementActionsImpl.h"
#include "oql/CZelUpdate.h"
#include "store/CZelBoolean.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelFilter.h"
#include "store/CZelTableProps.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000

namespace {

int ZelOQLlex(UZelGrammarValue *value, CZelOQLScanner &scanner) {
    return scanner.NextToken(&value->m_token);
}

// The caller reports the error with its place.
void ZelOQLerror(CZelOQLScanner &, CZelStatementActions &, const char *) {}

}  // namespace
}

%token <m_token.m_slice> __ZEL_IDENT "name"
%token <m_token.m_slice> __ZEL_STRING "string"
%token <m_token.m_int> __ZEL_INTNUM "integer"
%token <m_token.m_longLong> __ZEL_LONGLONGNUM "long integer"
%token <m_token.m_double> __ZEL_APPROXNUM "number"
%token __ZEL_OR "or" __ZEL_AND "and" __ZEL_NOT "not" __ZEL_EQ "=" __ZEL_NEQ "<>" __ZEL_LT "<" __ZEL_GT ">"
%token __ZEL_LTE "<=" __ZEL_GTE ">=" __ZEL_UMINUS __ZEL_ALL "all" __ZEL_FUNC "avg" __ZEL_ANY "any"
%token __ZEL_ARRAY "array" __ZEL_ASC "asc" __ZEL_BETWEEN "between" __ZEL_BY "by" __ZEL_CHARACTER "char"
%token __ZEL_CREATE "create" __ZEL_COUNTER "counter" __ZEL_COUNTSTAR "count(*)" __ZEL_DATA "data"
%token __ZEL_DATABASE "database" __ZEL_DEFAULT "default" __ZEL_DELETE "delete" __ZEL_DESC "desc"
%token __ZEL_DISTINCT "distinct" __ZEL_DROP "drop" __ZEL_ESCAPE "escape" __ZEL_EXISTS "exists"
%token __ZEL_EXTERNAL "external" __ZEL_EVAL "eval" __ZEL_FLOAT "float" __ZEL_FROM "from" __ZEL_GROUP "group"
%token __ZEL_HAVING "having" __ZEL_IN "in" __ZEL_INSERT "insert" __ZEL_INTEGER "int" __ZEL_INTO "into"
%token __ZEL_IPADDRESS "ipaddress" __ZEL_IS "is" __ZEL_KEY "key" __ZEL_LIKE "like" __ZEL_LIST "list"
%token __ZEL_LOCATOR "locator" __ZEL_LONG "long" __ZEL_LONGLONG "long64" __ZEL_NULLX "null" __ZEL_OBJECT "object"
%token __ZEL_OBJPOINTER "->" __ZEL_ORDER "order" __ZEL_PRIMARY "primary" __ZEL_SELECT "select" __ZEL_SET "set"
%token __ZEL_SHUTDOWN "shutdown" __ZEL_SMALLINT "smallint" __ZEL_SOME "some" __ZEL_TABLE "table" __ZEL_TIME "time"
%token __ZEL_TEXT "text" __ZEL_TIMESTAMP "timestamp" __ZEL_TYPE "type" __ZEL_UNIQUE "unique" __ZEL_UPDATE "update"
%token __ZEL_VARCHAR "varchar" __ZEL_VALUES "values" __ZEL_WHERE "where" __ZEL_VOLATILE "volatile" __ZEL_NEXT "next"
%token __ZEL_INDEX "index" __ZEL_OFF "off" __ZEL_ON "on" __ZEL_SHOW "show" __ZEL_TABLES "tables"
%token __ZEL_DATABASES "databases"
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
%destructor { delete $$; } <m_attribute> <m_value> <m_member>
%destructor { ZelDeleteBag<CZelAssign>($$); } <m_assignBag>
%destructor { ZelDeleteBag<CZelExprComplex>($$); } <m_valueBag>
%destructor { ZelDeleteStack<CZelTblAttr>($$); } <m_attributeStack>
%destructor { ZelDeleteStack<CZelColDef>($$); } <m_optionStack>
%destructor { delete $$; } <m_order> <m_assign>

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
%type <m_column> data_type
%type <m_attributeStack> base_table_element_commalist
%type <m_attribute> base_table_element column_def table_constraint_def
%type <m_optionStack> column_def_opt_list
%type <m_column> column_def_opt
%type <m_atoms> column_commalist unique_on opt_unique_on
%type <m_exprBag> column_commabag
%type <m_expr> database_name
%type <m_valueBag> insert_values opt_insert_expressions insert_expr_commalist
%type <m_value> insert_expr_ref
%type <m_list> insert_object_expr_list insert_varbind_expr_list insert_list_expr_list insert_expr_list
%type <m_member> insert_varbind_expr
%type <m_assignBag> assignment_commalist
%type <m_assign> assignment

%%

oql_list:
      oql ';'
    | oql_list oql ';'
    ;

oql:
      %empty
    | db_def_element_list
    | delete_statement_searched
    | insert_statement
    | select_statement
    | update_statement_searched
    | select_into_statement
    | drop_entity
    | drop_index
    | set_behaviour
    | shutdown_statement
    | show_statement
    ;

/* Definitions may follow one another without a semicolon. */
db_def_element_list:
      db_def_element
    | db_def_element_list db_def_element
    ;

db_def_element:
      base_table_def
    | database_create
    | data_type_def
    | base_index_def
    ;

/* --- definitions --- */

base_table_def:
      "create" "table" table '(' base_table_element_commalist ')'  { actions.PushTable($3, $5); }
    ;

base_table_element_commalist:
      base_table_element                                   { $$ = actions.AddAttribute(nullptr, $1); }
    | base_table_element_commalist ',' base_table_element  { $$ = actions.AddAttribute($1, $3); }
    ;

base_table_element:
      column_def
    | table_constraint_def
    ;

column_def: "name" data_type column_def_opt_list  { $$ = actions.Column($1, $2, $3); } ;

column_def_opt_list:
      %empty                              { $$ = new CZelStack(-1); }
    | column_def_opt_list column_def_opt  { $$ = actions.AddOption($1, $2); }
    ;

column_def_opt:
      "not" "null"                  { $$ = actions.NotNullOption(nullptr); }
    | "not" "null" "unique"         { $$ = actions.NotNullOption(&CZelColDef::RCDSetUnique); }
    | "not" "null" "primary" "key"  { $$ = actions.NotNullOption(&CZelColDef::RCDSetIndex); }
    | "default" atom                { $$ = actions.DefaultOption($2); }
    ;

table_constraint_def:
      "unique" '(' column_commalist ')'
          { $$ = actions.Constraint(&CZelTableProps::RTPSetUniques, $3); }
    | "primary" "key" '(' column_commalist ')'
          { $$ = actions.Constraint(&CZelTableProps::RTPSetIndices, $4); }
    | "counter" '(' column_commalist ')'
          { $$ = actions.Constraint(&CZelTableProps::RTPSetCounters, $3); }
    | "timestamp" '(' column_commalist ')'
          { $$ = actions.Constraint(&CZelTableProps::RTPSetTimestamps, $3); }
    | "volatile"
          { $$ = actions.NoConstraint(); }
    ;

column_commalist:
      "name"                       { $$ = actions.AddName(nullptr, $1); }
    | column_commalist ',' "name"  { $$ = actions.AddName($1, $3); }
    ;

column_commabag:
      multi_column                      { $$ = actions.AddTo(nullptr, $1); }
    | column_commabag ',' multi_column  { $$ = actions.AddTo($1, $3); }
    ;

/* Taken, without effect. */
data_type_def: "data" "type" "name" "is" "external" "name" ;

database_create:
      "create" "database" eval_ref  { actions.Push(new CZelDatabase(actions.ClauseValue($3))); }
    | "create" "database" "name"    { actions.PushDatabase($3); }
    ;

base_index_def:
      "create" "index" multi_column "on" table '(' column_commalist ')'
          { actions.Push(new CZelIndex($3, $5, $7)); }
    ;

/* --- behaviour --- */

/* Reduced before the next token is read, which is scanned under the new setting. */
set_behaviour:
      "set" "escape" "on"   { ZelSetEscape(true); }
    | "set" "escape" "off"  { ZelSetEscape(false); }
    ;

shutdown_statement: "shutdown"  { actions.Push(new CZelExit()); } ;

show_statement:
      "show" "table" "name" '.' "name"  { actions.PushShow(&$3, &$5); }
    | "show" "tables" "from" "name"     { actions.PushShow(&$4, nullptr); }
    | "show" "databases"                { actions.PushShow(nullptr, nullptr); }
    | "show"                            { actions.PushBareShow(); }
    ;

drop_entity:
      "drop" "table" table  { actions.Push(new CZelDropObject($3, E_RDOTable)); }
    | "drop" "database" database_name
          { actions.Push(new CZelDropObject(new CZelDbEntity($3, nullptr, nullptr), E_RDODatabase)); }
    ;

database_name:
      "name"    { $$ = actions.Name($1); }
    | "string"  { $$ = actions.QuotedName($1); }
    | eval_ref  { $$ = actions.ClauseValue($1); }
    ;

drop_index: "drop" "index" multi_column  { actions.Push(new CZelDropIndex($3)); } ;

/* --- insert --- */

/* The columns may stand on either side of those that are to be unique. */
insert_statement:
      "insert" "into" table insert_values
          { actions.Push(new CZelInsert($3, nullptr, nullptr, $4)); }
    | "insert" "into" table unique_on insert_values
          { actions.Push(new CZelInsert($3, $4, nullptr, $5)); }
    | "insert" "into" table '(' column_commabag ')' insert_values
          { actions.Push(new CZelInsert($3, nullptr, $5, $7)); }
    | "insert" "into" table unique_on '(' column_commabag ')' insert_values
          { actions.Push(new CZelInsert($3, $4, $6, $8)); }
    | "insert" "into" table '(' column_commabag ')' unique_on insert_values
          { actions.Push(new CZelInsert($3, $7, $5, $8)); }
    ;

unique_on: "unique" '(' column_commalist ')'  { $$ = $3; } ;

opt_unique_on:
      %empty  { $$ = nullptr; }
    | unique_on
    ;

insert_values: "values" '(' opt_insert_expressions ')'  { $$ = $3; } ;

opt_insert_expressions:
      %empty  { $$ = nullptr; }
    | insert_expr_commalist
    ;

insert_expr_commalist:
      insert_expr_ref                            { $$ = actions.AddTo(nullptr, $1); }
    | insert_expr_commalist ',' insert_expr_ref  { $$ = actions.AddTo($1, $3); }
    ;

insert_expr_ref:
      eval_ref                 { $$ = new CZelExprComplex(actions.ClauseValue($1)); }
    | "string"                 { $$ = new CZelExprComplex(actions.TextValue($1)); }
    | "integer"                { $$ = new CZelExprComplex(actions.Value($1)); }
    | "long integer"           { $$ = new CZelExprComplex(actions.Value($1)); }
    | "number"                 { $$ = new CZelExprComplex(actions.RealValue($1)); }
    | "null"                   { $$ = new CZelExprComplex(actions.AtomValue(nullptr)); }
    | insert_object_expr_list  { $$ = actions.ObjectValue($1); }
    | insert_list_expr_list    { $$ = actions.ListValue($1); }
    ;

insert_object_expr_list:
      open_object insert_varbind_expr_list '}'  { actions.LeaveLiteral(); $$ = $2; }
    | open_object '}'                           { actions.LeaveLiteral(); $$ = nullptr; }
    ;

insert_varbind_expr_list:
      insert_varbind_expr                               { $$ = actions.AddMember(nullptr, $1); }
    | insert_varbind_expr_list ',' insert_varbind_expr  { $$ = actions.AddMember($1, $3); }
    ;

insert_varbind_expr: "name" "=" insert_expr_ref  { $$ = actions.Member($1, $3); } ;

insert_list_expr_list:
      open_list insert_expr_list ']'  { actions.LeaveLiteral(); $$ = $2; }
    | open_list ']'                   { actions.LeaveLiteral(); $$ = nullptr; }
    ;

insert_expr_list:
      insert_expr_ref                       { $$ = actions.AddValue(nullptr, $1); }
    | insert_expr_list ',' insert_expr_ref  { $$ = actions.AddValue($1, $3); }
    ;

/* --- select, update, delete --- */

select_statement:
      "select" opt_all_distinct selection table_exp
          { actions.Push(actions.Select($4, $2, $3)); }
    | "select" "count(*)" table_exp
          { $3->RQSetCountStar(E_RBTrue); actions.Push($3); }
    ;

select_into_statement:
      "select" opt_all_distinct selection "into" table opt_unique_on table_exp
          { actions.Push(new CZelQryInsert($5, $6, actions.Select($7, $2, $3))); }
    ;

delete_statement_searched:
      "delete" "from" table opt_where_clause  { actions.Push(new CZelDelete($3, $4)); }
    ;

update_statement_searched:
      "update" table "set" assignment_commalist opt_where_clause
          { actions.Push(new CZelUpdate($2, $4, $5)); }
    ;

assignment_commalist:
      %empty                               { $$ = new CZelBag(); }
    | assignment                           { $$ = actions.AddTo(nullptr, $1); }
    | assignment_commalist ',' assignment  { $$ = actions.AddTo($1, $3); }
    ;

assignment: column_ref "=" scalar_exp  { $$ = new CZelAssign($1, $3); } ;

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
    | scalar_exp "not" "in" '(' column_ref ')'
          { $$ = actions.Compare($1, E_RONotIn, actions.EntityValue($5)); }
    | scalar_exp "in" '(' named_ref ')'   { $$ = actions.Compare($1, E_ROIn, actions.EntityValue($4)); }
    | scalar_exp "in" '(' eval_ref ')'    { $$ = actions.Compare($1, E_ROIn, actions.ClauseValue($4)); }
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
    | "long integer"             { $$ = actions.Value($1); }
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

/* A lone eval(...) is a name only where nothing but a name can stand; elsewhere it is a value. */
column_ref:
      named_ref
    | eval_ref  { $$ = new CZelDbEntity(nullptr, nullptr, actions.ClauseValue($1)); }
    ;

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

multi_column:
      column_name
    | eval_ref  { $$ = actions.ClauseValue($1); }
    ;

column_name: "name"  { $$ = actions.Name($1); } ;

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
    | '(' eval_ref ')'   { $$ = actions.ClauseValue($2); }
    ;

eval_ref: "eval" '(' data_type ',' "string" ')'  { $$ = actions.Clause($3, $5); } ;

/* --- types --- */

data_type:
      "char"                       { $$ = actions.Type(E_RDTText); }
    | "char" '(' "integer" ')'     { $$ = actions.Type(E_RDTText); }
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
    | "long integer"  { $$ = new CZelAtom($1); }
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
