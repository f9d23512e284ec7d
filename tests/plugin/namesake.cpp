// A module that exports data under the names of the plug-in's.

#define HVK3_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {
int g_nOwn = 0;
}

HVK3_EXPORT void* m_pFG;
HVK3_EXPORT void* m_pDummy;
void* m_pFG = &g_nOwn;
void* m_pDummy = &g_nOwn;
