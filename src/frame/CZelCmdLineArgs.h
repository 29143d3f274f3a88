// The words of a command line, with the options stored for the program behind them, read against a table
// of options. It reports what is wrong and goes on; whether the process can run is its caller's decision.
//
//   CZelCmdLineArgs args(argc, argv, table, count, nullptr, nullptr);
//   CZelHashStore *found = args.RCLAFindArgs(nullptr);
//   CZelHashNode *domain = found->RHSRetrieveObject("-domain");  // its object is a CZelCLArg
//
// The first value of an option stands, so the command line wins over stored options.
#pragma once

#include <string>
#include <vector>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"
#include "frame/CZelCLArg.h"

class CZelAtom;
class CZelDoubleList;
class CZelHashStore;
class CZelString;

class QUINTOR_API CZelCmdLineArgs {
public:
    CZelCmdLineArgs(int argc, char **argv);

    // `controls`, a list of CZelCLArg, is taken over and the table's rows are added to it; either may be
    // null. The tail, which may be null, is copied.
    CZelCmdLineArgs(int argc, char **argv, const SZelCLArgRec *table, int count, const char *usageTail,
                    CZelDoubleList *controls);
    CZelCmdLineArgs(const CZelCmdLineArgs &) = delete;
    CZelCmdLineArgs &operator=(const CZelCmdLineArgs &) = delete;
    virtual ~CZelCmdLineArgs();

    // Appends an option per row; a null table adds nothing.
    void RCLAAddControls(const SZelCLArgRec *table, int count);

    // Replaces all options and forgets the results read with them. Null leaves no options and no tail.
    void RCLASetControls(CZelDoubleList *controls);

    void RCLASetUsage(char *tail);  // takes over a text from malloc; null for none
    char *RCLAGetUsage() const;     // new from malloc

    // The options found, under their names; their values are int 1 for a flag, else int or text. Store and
    // options stay this object's. Words are read once: a later call gives the same store and adds nothing
    // to `missing`, which may be null, see below.
    CZelHashStore *RCLAFindArgs(CZelDoubleList *missing);

    // Adds a copy of each required option that is not among the words. 1, or E_RCBadArgument, reported,
    // for null.
    int RCLACheckRequired(CZelDoubleList *missing) const;

protected:
    // A line per option with a name, new from malloc.
    char *RCLAFormatUsage() const;

    // Appends an option's line: its name in a column of `width` and one more, then the description. An
    // option without a description does not end its line.
    void RCLAItemUsage(CZelCLArg *control, int width, CZelString *text) const;

private:
    struct Word {
        std::string m_Text;
        bool m_FromRegistry;
    };

    void RCLAInit(int argc, char **argv, const char *usageTail, CZelDoubleList *controls);
    void findAll();
    CZelCLArg *controlNamed(const std::string &word) const;
    void takeFlag(CZelCLArg *control);
    bool takeParameter(CZelCLArg *control, std::size_t position);
    void addValue(CZelCLArg *control, CZelAtom *value, bool fromRegistry);
    void checkSecondValue(const CZelCLArg *control, const CZelAtom *value, bool fromRegistry) const;
    bool isAmongWords(const char *name) const;
    int usageWidth() const;

    int m_Count = 0;                       // words: the command line's and two per stored option
    std::vector<Word> m_Args;              // the command line's first
    CZelHashStore *m_Found = nullptr;      // owned; null until read
    CZelDoubleList *m_Controls = nullptr;  // of CZelCLArg, owned, never null after construction
    char *m_UsageTail = nullptr;           // owned
};
