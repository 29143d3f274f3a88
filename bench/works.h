// The works of each kind, added to the table in the order in which it shows them.
#pragma once

void addParseWorks();
void addInsertWorks();
void addSelectWorks();
void addChangeWorks();
void addThreadWorks();
void addJoinWorks();
void addDuckWorks();  // further peers of works added before
void addCacheWorks();
void addLmdbWorks();  // a further peer of these
void addClauseWorks();
void addRompWorks();
void addLimits();
void addMemoryMeasure();
void addVendorWork();  // only with QUINTOR_VENDORS in the environment
