#include <cwchar>
#include <map>
#include <string>

#include "host/rx/rxinternal.h"
#include "vora/arx/rx.h"

namespace {

ACHAR* copyName(const ACHAR* s) {
  if (s == nullptr) return nullptr;
  const std::size_t n = std::wcslen(s);
  auto* out = new ACHAR[n + 1];
  std::wmemcpy(out, s, n + 1);
  return out;
}

// The class dictionary is built on first use rather than by a static
// constructor, so that classes can be looked up from any static initialiser
// of the host or of a plug-in, whatever the order the linker gave them.
bool gRegistering = false;
bool gRegistered = false;

AcRxDictionary& rawClassDictionary() {
  static auto* dict = new AcRxDictionary();
  return *dict;
}

void ensureHostClasses() {
  if (gRegistered || gRegistering) return;
  gRegistering = true;
  vora_host::registerHostClasses();
  gRegistered = true;
  gRegistering = false;
  acrxBuildClassHierarchy();
}

}  // namespace

AcRxObject::~AcRxObject() = default;

AcRxClass* AcRxObject::desc() {
  static AcRxClass* cls = nullptr;
  if (cls == nullptr) cls = acrxFindAcRxClass(L"AcRxObject");
  return cls;
}

AcRxClass* AcRxObject::isA() const { return AcRxObject::desc(); }

bool AcRxObject::isKindOf(const AcRxClass* aClass) const {
  const AcRxClass* mine = isA();
  return mine != nullptr && mine->isDerivedFrom(aClass);
}

AcRxClass::AcRxClass(const ACHAR* name, const ACHAR* parentName, int dwgVer, int maintVer, int proxyFlags,
                     AcRxPseudoCtor ctor, const ACHAR* dxfName, const ACHAR* appName)
    : mName(copyName(name)),
      mParentName(copyName(parentName)),
      mDxfName(copyName(dxfName)),
      mAppName(copyName(appName)),
      mpParent(nullptr),
      mCtor(ctor),
      mDwgVer(dwgVer),
      mMaintVer(maintVer),
      mProxyFlags(proxyFlags) {}

AcRxClass::~AcRxClass() {
  delete[] mName;
  delete[] mParentName;
  delete[] mDxfName;
  delete[] mAppName;
}

AcRxClass* AcRxClass::desc() {
  static AcRxClass* cls = nullptr;
  if (cls == nullptr) cls = acrxFindAcRxClass(L"AcRxClass");
  return cls;
}

AcRxClass* AcRxClass::cast(const AcRxObject* inPtr) {
  return (inPtr == nullptr || !inPtr->isKindOf(AcRxClass::desc())) ? nullptr
                                                                    : const_cast<AcRxClass*>(static_cast<const AcRxClass*>(inPtr));
}

AcRxClass* AcRxClass::isA() const { return AcRxClass::desc(); }

AcRxClass* AcRxClass::myParent() const {
  if (mpParent == nullptr && mParentName != nullptr && std::wcscmp(mParentName, mName) != 0) {
    mpParent = acrxFindAcRxClass(mParentName);
  }
  return mpParent;
}

AcRxObject* AcRxClass::create() const { return mCtor != nullptr ? mCtor() : nullptr; }

Acad::ErrorStatus AcRxClass::getClassVersion(int& dwgVer, int& maintVer) const {
  dwgVer = mDwgVer;
  maintVer = mMaintVer;
  return Acad::eOk;
}

bool AcRxClass::isDerivedFrom(const AcRxClass* other) const {
  if (other == nullptr) return false;
  // A chain longer than the number of classes would be a cycle; stop there.
  for (const AcRxClass* c = this; c != nullptr; c = c->myParent()) {
    if (c == other) return true;
  }
  return false;
}

bool AcRxClass::isDerivedFrom(const AcRxClass* derived, const AcRxClass* base) {
  return derived != nullptr && derived->isDerivedFrom(base);
}

AcRxDictionary* acrxClassDictionary() {
  ensureHostClasses();
  return &rawClassDictionary();
}

AcRxDictionary* acrxSysRegistry() {
  static AcRxDictionary* reg = [] {
    auto* r = new AcRxDictionary();
    r->atPut(ACRX_CLASS_DICTIONARY, &rawClassDictionary());
    r->atPut(ACRX_SERVICE_DICTIONARY, new AcRxDictionary());
    return r;
  }();
  ensureHostClasses();
  return reg;
}

AcRxClass* acrxFindAcRxClass(const ACHAR* className) {
  if (className == nullptr) return nullptr;
  ensureHostClasses();
  return static_cast<AcRxClass*>(rawClassDictionary().at(className));
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int dwgVer, int maintVer,
                        int proxyFlags, AcRxPseudoCtor pseudoCtor, const ACHAR* dxfName, const ACHAR* appName,
                        AppNameChangeFuncPtr) {
  if (className == nullptr) return nullptr;
  ensureHostClasses();
  AcRxDictionary& dict = rawClassDictionary();
  if (AcRxObject* existing = dict.at(className)) return static_cast<AcRxClass*>(existing);
  auto* cls = new AcRxClass(className, parentClassName, dwgVer, maintVer, proxyFlags, pseudoCtor, dxfName, appName);
  dict.atPut(className, cls);
  return cls;
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int proxyFlags,
                        AcRxPseudoCtor pseudoCtor, const ACHAR* dxfName, const ACHAR* appName) {
  return newAcRxClass(className, parentClassName, 0, 0, proxyFlags, pseudoCtor, dxfName, appName, nullptr);
}

void deleteAcRxClass(AcRxClass* pClassObj) {
  if (pClassObj == nullptr) return;
  AcRxDictionary& dict = rawClassDictionary();
  if (dict.at(pClassObj->name()) != pClassObj) return;
  dict.remove(pClassObj->name());
  delete pClassObj;
  // Classes that named it as parent lose the link until it is registered again.
  acrxBuildClassHierarchy();
}

void acrxBuildClassHierarchy() {
  AcRxDictionary& dict = rawClassDictionary();
  AcRxDictionaryIterator* it = dict.newIterator();
  for (; !it->done(); it->next()) {
    auto* c = static_cast<AcRxClass*>(it->object());
    c->mpParent = nullptr;
    if (c->mParentName != nullptr && std::wcscmp(c->mParentName, c->mName) != 0) {
      c->mpParent = static_cast<AcRxClass*>(dict.at(c->mParentName));
    }
  }
  delete it;
}

namespace vora_host {

AcRxClass* registerClass(AcRxClass*& gpDesc, const ACHAR* name, const ACHAR* parent, int dwgVer, int maintVer,
                         int proxyFlags, AcRxPseudoCtor ctor, const ACHAR* dxfName, const ACHAR* appName) {
  gpDesc = newAcRxClass(name, parent, dwgVer, maintVer, proxyFlags, ctor, dxfName, appName, nullptr);
  return gpDesc;
}

}  // namespace vora_host
