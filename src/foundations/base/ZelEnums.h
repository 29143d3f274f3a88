// The enumerations that all layers share. Their numbers are fixed: they stand in stored schemas, index
// tables and travel between processes.
#pragma once

// The truth type of every interface. Functions return one of the two enumerators and nothing else.
typedef int __boolean;
enum : int { E_RBFalse = 0, E_RBTrue = 1 };

constexpr __boolean ZelBool(bool value) {
    return value ? E_RBTrue : E_RBFalse;
}

// The type of a value and of a column.
enum EZelDataType : int {
    E_RDTInt = 0,      // 32-bit signed
    E_RDTLong = 1,     // a tag of its own; 32-bit range when coerced, the native word when set by code
    E_RDTText = 2,     // NUL-terminated bytes
    E_RDTFloat = 3,    // 32-bit IEEE
    E_RDTLong64 = 4,   // 64-bit signed
    E_RDTData = 5,     // counted bytes; the form in which encoded records travel
    E_RDTLocator = 6,  // a declared column type only
    E_RDTList = 7,     // ordered list of atoms
    E_RDTObject = 8,   // ordered list of name/value pairs
    E_RDTUndefined = 9
};

// Operators of conditions.
enum EZelOper : int {
    E_ROEqual = 0,
    E_RONotEqual = 1,
    E_ROLess = 2,
    E_ROLessEqual = 3,
    E_ROGreater = 4,
    E_ROGreaterEqual = 5,
    E_ROIn = 6,
    E_RONotIn = 7,
    E_ROLike = 8,
    E_RONotLike = 9,
    E_ROExists = 10,
    E_ROBetween = 11,
    E_RONotBetween = 12,
    E_ROIsNull = 13,
    E_ROIsNotNull = 14,
    E_RONone = 15  // true of every row
};

// Joiners of conditions. NoOp stands in a node that holds a comparison.
enum EZelAlgebraic : int { E_RAAnd = 0, E_RAOr = 1, E_RANot = 2, E_RANoOp = 3 };

// The right side of a comparison.
enum EZelBoolRvalType : int { E_RBRExpr = 0, E_RBRQuery = 1 };

// The shape of a comparison's operands, left then right.
enum EZelBoolEvalType : int { E_RBEColumnValue = 0, E_RBEValueColumn = 1, E_RBEColumnColumn = 2, E_RBEValueValue = 3 };

// What a scalar expression holds. A function has no value.
enum EZelExprType : int { E_RETAtom = 0, E_RETEntity = 1, E_RETClause = 2, E_RETFunction = 3 };

// What a value of an insert is built of.
enum EZelExprComplexType : int { E_RECTSimple = 0, E_RECTList = 1, E_RECTObject = 2 };

// Selectors of list elements, as int keys of a column specification beside the indexes 0 and above.
enum EZelListUpdateType : int { E_RLUAll = -1, E_RLUNext = -2, E_RLUAny = -4 };

enum EZelOrderDirection : int { E_RODAscending = 0, E_RODDescending = 1 };

enum EZelTblAttrType : int { E_RTAColumn = 0, E_RTAProperties = 1 };

// Kinds of statements.
enum __e_dbObj : int {
    E_DONone = 0,
    E_DODatabase = 1,
    E_DOTable = 2,
    E_DOInsert = 3,
    E_DODelete = 4,
    E_DOUpdate = 5,
    E_DOQuery = 6,
    E_DOQryInsert = 7,
    E_DODropObject = 8,
    E_DOIndex = 9,
    E_DODropIndex = 10,
    E_DOExit = 11,
    E_DOShow = 12
};

enum EZelDropObjectTarget : int { E_RDODatabase = 0, E_RDOTable = 1 };

// The outcome of a store operation, beside its int result. It is what a remote client receives.
enum EZelStoreErrorStatus : int {
    E_RSEOk = 0,
    E_RSEPermission = 1,
    E_RSENoDatabase = 2,
    E_RSENoTable = 3,
    E_RSENoColumn = 4,
    E_RSENoIndex = 5,
    E_RSEBadType = 6,
    E_RSEIncompleteRow = 7,
    E_RSENoMatch = 8,
    E_RSECreateTable = 9,
    E_RSECreateDatabase = 10,
    E_RSECreateIndex = 11,
    E_RSEDuplicateKey = 12,
    E_RSEUpdateFailed = 13
};

// Which half of a record's pairs a clause asks for.
enum EVBType : int { E_VBName = 0, E_VBValue = 1 };
