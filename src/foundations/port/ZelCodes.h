// Every result code of the system. 1 is success, failures are negative and share one number space; 0 is
// not success. A number stands here and nowhere else.
#pragma once

#include "foundations/port/ZelExport.h"

// The operation did what it was asked.
constexpr int E_RCOk = 1;

// --- arguments, values and states ---

// A null or senseless argument, or a state that the caller should not have produced.
constexpr int E_RCBadArgument = -220552;
// Memory is exhausted, and the process ends after this report; or the text of a clause is none, and nothing ends.
constexpr int E_RCNoMemory = -220553;
// Null stands where a value, a name or a result was needed.
constexpr int E_RCNull = -220402;
// A value in data is bad or missing; the report's text says which.
constexpr int E_RCBadValue = -220439;
// A state that should not arise, as a lock given back by a thread that doesn't hold it.
constexpr int E_RCBadState = -220440;
// A value has another type than the operation can take.
constexpr int E_RCBadType = -220532;
// An expression is of a kind that has no meaning in this place.
constexpr int E_RCBadExprType = -220432;
// A list or object expression was built from no list.
constexpr int E_RCNullList = -220496;
// The value given is the very one that is held.
constexpr int E_RCSameValue = -220417;

// --- looking up and adding ---

// Nothing was found.
constexpr int E_RCNotFound = -220547;
// The key is not in the tree or the dictionary.
constexpr int E_RCNotInTree = -220560;
// The key is already in the dictionary.
constexpr int E_RCDuplicate = -220566;
// A row with this key exists, or a unique index holds the key already.
constexpr int E_RCKeyExists = -220565;
// A key column has no value.
constexpr int E_RCKeyMissing = -220430;
// A database of this name exists.
constexpr int E_RCDuplicateDatabase = -220424;
// A table of this name exists in its database.
constexpr int E_RCDuplicateTable = -220423;
// A filter or a lookup gave no value or several, where exactly one was needed.
constexpr int E_RCNotOneValue = -220523;

// --- store ---

// A callback refused the row.
constexpr int E_RCRefused = -220426;
// Names and values don't match, in number or in kind.
constexpr int E_RCBadColumnValue = -220427;
// A database or a table could not be brought to life.
constexpr int E_RCNotInitialised = -220431;
// The filter node already has this branch.
constexpr int E_RCBranchTaken = -220557;
// The filter node holds a comparison and so can't have branches.
constexpr int E_RCHasKernel = -220546;

// --- language ---

// The text is not of the language it should be in.
constexpr int E_RCSyntax = -220551;
// The language has this word or number form, but the system does not carry it out.
constexpr int E_RCUnsupported = -220502;
// A statement lacks what it needs to be written as text, or what would say which object it is about.
constexpr int E_RCNoText = -220476;

// --- threads ---

// A wait ended at its time limit.
constexpr int E_RCTimeLimit = -220477;
// The lock of a shared record could not be set up.
constexpr int E_RCLockSetup = -220489;
// The lock of a shared record could not be taken down.
constexpr int E_RCLockTeardown = -220487;

// --- files ---

// A file can't be reached, can't be opened or has an impossible size.
constexpr int E_RCOpenFailed = -220549;
// A schema file can't be opened.
constexpr int E_RCFileOpen = -220452;
// A file can't be read.
constexpr int E_RCFileRead = -220394;
// A file could not be closed in order.
constexpr int E_RCFileClose = -220393;
// What was given does not read as what it must be: an option's integer, a cache file's pages.
constexpr int E_RCMalformed = -220469;
// A page of a cache file came back short.
constexpr int E_RCPageRead = -220491;
// A page of a cache file was not written whole.
constexpr int E_RCPageWrite = -220492;
// No row number and no file position is left in a cache.
constexpr int E_RCNoHandle = -220493;
// A cache file could not be closed in order.
constexpr int E_RCCacheClose = -220495;
// A dynamic library can't be opened.
constexpr int E_RCLibraryOpen = -220451;

// --- command line ---

// An option that has to be there is missing, lacks its value, or is given twice with different values.
constexpr int E_RCBadOption = -220434;
// The table of options names a type that no option can have.
constexpr int E_RCBadOptionType = -220382;
// A warning: the command line's value of an option wins over the stored one.
constexpr int E_RCOptionOverridden = -220391;

// --- models and integration ---

// A class record lacks a field that it must have.
constexpr int E_RCFieldMissing = -220422;
// A change of a class names no class.
constexpr int E_RCNoClassName = -220497;
// The configuration of an action is unusable.
constexpr int E_RCBadConfiguration = -220522;
// A row could not be put into the packets of a reply.
constexpr int E_RCNotEncoded = -220545;

// The name of a code as it stands above, "E_RCKeyExists"; null for a number that is none.
QUINTOR_API const char *ZelCodeName(int code);
