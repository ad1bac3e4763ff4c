// Contents:
//   Routes: routes by text or by record, the default card and its route
//
// Each chapter has its own helpers directly above its operations and calls only operations of the
// chapters before it.

#include "CommonApi.h"

// ==== Routes ====
