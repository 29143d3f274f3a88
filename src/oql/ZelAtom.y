// The grammar of literal values.
//
// Bison, LALR, without conflicts. What the productions build stands in CZelGrammarActions.
%define api.pure full
%define api.prefix {ZelAtom}
%define api.value.type {UZelGrammarValue}
%parse-param {CZelAtomScanner &scanner} {CZelAtomActions &actions}
%lex-param {CZelAtomScanner &scanner}
%expect 0

%code top {
#include "oql/CZelAtomScanner.h"
}

%code requires {
#include "oql/UZelGrammarValueImpl.h"

class CZelAtomActions;
class CZelAtomScanner;
}

%code {
#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVBList.h"
#include "oql/CZelAtomActionsImpl.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000

namespace {

int ZelAtomlex(UZelGrammarValue *value, CZelAtomScanner &scanner) {
    return scanner.NextToken(&value->m_token);
}

void ZelAtomerror(CZelAtomScanner &, CZelAtomActions &, const char *message) {
    const bool isSyntax = std::strcmp(message, "syntax error") == 0;
    ZelAtomFlexLexer::Message(isSyntax ? "parse error" : "parser stack overflow");
}

}  // namespace
}

%token <m_token.m_slice> __ZEL_AP_IDENT "name"
%token <m_token.m_slice> __ZEL_AP_STRING "string"
%token <m_token.m_int> __ZEL_AP_INTNUM "integer"
%token <m_token.m_double> __ZEL_AP_APPROXNUM "number"
%token __ZEL_AP_EQ "=" __ZEL_AP_TRUE "true" __ZEL_AP_FALSE "false"

%destructor { delete $$; } <m_atom> <m_atoms> <m_bindings> <m_binding>

%type <m_atom> atom list_whole object_whole
%type <m_atoms> atom_list
%type <m_bindings> varbind_list
%type <m_binding> varbind

%%

literal: atom  { actions.SetResult($1); } ;

atom:
      "string"   { $$ = actions.Text($1); }
    | "integer"  { $$ = new CZelAtom($1); }
    | "number"   { $$ = actions.Real($1); }
    | "true"     { $$ = new CZelAtom(1); }
    | "false"    { $$ = new CZelAtom(0); }
    | object_whole
    | list_whole
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
