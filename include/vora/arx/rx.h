// Run-time classes, the system registry and application messages.
//
// Every class of the host, and every class a plug-in declares with the
// ACRX_ macros below, has one AcRxClass object registered by name in the class
// dictionary. An object answers isA() with its class; isKindOf and cast walk
// the parent chain, so code can test an object's class without C++ RTTI, as
// with the CAD program.
#ifndef VORA_ARX_RX_H
#define VORA_ARX_RX_H

#include "vora/arx/acadstrc.h"
#include "vora/arx/acarray.h"

struct AcRx {
  enum AppMsgCode {
    kNullMsg = 0,
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
    kCfgMsg = 6,
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 9,
    kDependencyMsg = 10,
    kNoDependencyMsg = 11,
    kOleUnloadAppMsg = 12,
    kPreQuitMsg = 13,
    kInitDialogMsg = 14,
    kEndDialogMsg = 15,
    kSuspendMsg = 16,
    kInitTabGroupMsg = 17,
    kEndTabGroupMsg = 18,
    kLoadADSMsg = kLoadDwgMsg,
    kUnloadADSMsg = kUnloadDwgMsg
  };
  enum AppRetCode { kRetOK = 0, kRetError = 3 };
  enum DictIterType { kDictSorted = 0, kDictCollated = 1 };
  enum Ordering { kLessThan = -1, kEqual = 0, kGreaterThan = 1, kNotOrderable = 2 };
};

class AcRxClass;
class AcRxObject;
using AcRxPseudoCtor = AcRxObject* (*)();
using AppNameChangeFuncPtr = void (*)(const AcRxClass* classObj, ACHAR*& newAppName, int saveVer);

class VORA_HOST_API AcRxObject {
public:
  virtual ~AcRxObject();

  static AcRxClass* desc();
  static AcRxObject* cast(const AcRxObject* inPtr) { return const_cast<AcRxObject*>(inPtr); }
  virtual AcRxClass* isA() const;

  // True when this object's class is aClass or derives from it.
  bool isKindOf(const AcRxClass* aClass) const;

protected:
  AcRxObject() = default;
};

class VORA_HOST_API AcRxClass : public AcRxObject {
public:
  static AcRxClass* desc();
  static AcRxClass* cast(const AcRxObject* inPtr);
  AcRxClass* isA() const override;

  const ACHAR* name() const { return mName; }
  const ACHAR* dxfName() const { return mDxfName; }
  const ACHAR* appName() const { return mAppName; }
  // The parent class, looked up by the parent's name when the class was
  // registered before its parent.
  AcRxClass* myParent() const;
  // A new instance made by the class's pseudo-constructor; null for a class
  // registered without one.
  AcRxObject* create() const;
  AcRxPseudoCtor constructor() const { return mCtor; }
  int proxyFlags() const { return mProxyFlags; }
  Acad::ErrorStatus getClassVersion(int& dwgVer, int& maintVer) const;

  bool isDerivedFrom(const AcRxClass* other) const;
  static bool isDerivedFrom(const AcRxClass* derived, const AcRxClass* base);

  AcRxClass(const AcRxClass&) = delete;
  AcRxClass& operator=(const AcRxClass&) = delete;
  ~AcRxClass() override;

private:
  friend VORA_HOST_API AcRxClass* newAcRxClass(const ACHAR*, const ACHAR*, int, int, int, AcRxPseudoCtor,
                                               const ACHAR*, const ACHAR*, AppNameChangeFuncPtr);
  friend VORA_HOST_API void acrxBuildClassHierarchy();
  AcRxClass(const ACHAR* name, const ACHAR* parentName, int dwgVer, int maintVer, int proxyFlags,
            AcRxPseudoCtor ctor, const ACHAR* dxfName, const ACHAR* appName);

  ACHAR* mName;
  ACHAR* mParentName;
  ACHAR* mDxfName;
  ACHAR* mAppName;
  mutable AcRxClass* mpParent;
  AcRxPseudoCtor mCtor;
  int mDwgVer;
  int mMaintVer;
  int mProxyFlags;
};

class AcRxDictionaryIterator;

// A dictionary of named run-time objects. The keys are case sensitive; the
// iterator goes through them in sorted order. The dictionary does not own its
// entries: atPut and remove hand the previous entry back to the caller.
class VORA_HOST_API AcRxDictionary : public AcRxObject {
public:
  static AcRxClass* desc();
  static AcRxDictionary* cast(const AcRxObject* inPtr);
  AcRxClass* isA() const override;

  AcRxDictionary();
  ~AcRxDictionary() override;
  AcRxDictionary(const AcRxDictionary&) = delete;
  AcRxDictionary& operator=(const AcRxDictionary&) = delete;

  AcRxObject* at(const ACHAR* key) const;
  // Stores pObject under key and returns the object it replaces (or null).
  AcRxObject* atPut(const ACHAR* key, AcRxObject* pObject);
  // Removes key and returns its object (or null when absent).
  AcRxObject* remove(const ACHAR* key);
  bool has(const ACHAR* key) const;
  Adesk::UInt32 numEntries() const;
  bool isCaseSensitive() const { return true; }
  // The caller deletes the iterator.
  AcRxDictionaryIterator* newIterator(AcRx::DictIterType type = AcRx::kDictSorted) const;

private:
  friend class AcRxDictionaryIterator;
  struct Impl;
  Impl* mpImpl;
};

class VORA_HOST_API AcRxDictionaryIterator : public AcRxObject {
public:
  ~AcRxDictionaryIterator() override;
  const ACHAR* key() const;
  AcRxObject* object() const;
  bool done() const;
  bool next();

private:
  friend class AcRxDictionary;
  explicit AcRxDictionaryIterator(const AcRxDictionary* dict);
  struct Impl;
  Impl* mpImpl;
};

// The registry of the process: a dictionary of named services. The class
// dictionary is its entry L"ClassDictionary".
#define ACRX_CLASS_DICTIONARY L"ClassDictionary"
#define ACRX_SERVICE_DICTIONARY L"ServiceDictionary"
VORA_HOST_API AcRxDictionary* acrxSysRegistry();
VORA_HOST_API AcRxDictionary* acrxClassDictionary();

VORA_HOST_API AcRxClass* acrxFindAcRxClass(const ACHAR* className);

// Registers a class under its name; registering a name again gives the class
// already registered. The names are copied.
VORA_HOST_API AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int proxyFlags = 0,
                                      AcRxPseudoCtor pseudoCtor = nullptr, const ACHAR* dxfName = nullptr,
                                      const ACHAR* appName = nullptr);
VORA_HOST_API AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int dwgVer,
                                      int maintVer, int proxyFlags = 0, AcRxPseudoCtor pseudoCtor = nullptr,
                                      const ACHAR* dxfName = nullptr, const ACHAR* appName = nullptr,
                                      AppNameChangeFuncPtr func = nullptr);
// Unregisters and deletes the class (at application unload).
VORA_HOST_API void deleteAcRxClass(AcRxClass* pClassObj);
// Links every registered class to its parent by the parent's name.
VORA_HOST_API void acrxBuildClassHierarchy();

// Run-time class members of a class: isA(), desc(), cast() and rxInit(), which
// registers the class. Use in the class body.
#define ACRX_DECLARE_MEMBERS(CLASS_NAME)                                       \
  AcRxClass* isA() const override;                                           \
  static AcRxClass* gpDesc;                                                  \
  static AcRxClass* desc();                                                  \
  static CLASS_NAME* cast(const AcRxObject* inPtr) {                         \
    return (inPtr == nullptr || !inPtr->isKindOf(CLASS_NAME::desc()))        \
               ? nullptr                                                     \
               : const_cast<CLASS_NAME*>(static_cast<const CLASS_NAME*>(inPtr)); \
  }                                                                          \
  static void rxInit();                                                      \
  static void rxInit(AppNameChangeFuncPtr)

namespace vora_host {
template <class T>
AcRxObject* instantiate() {
  return new T();
}
VORA_HOST_API AcRxClass* registerClass(AcRxClass*& gpDesc, const ACHAR* name, const ACHAR* parent, int dwgVer,
                                       int maintVer, int proxyFlags, AcRxPseudoCtor ctor, const ACHAR* dxfName,
                                       const ACHAR* appName);
}  // namespace vora_host

#define VORA_RX_DEFINE_COMMON(CLASS_NAME)                                     \
  AcRxClass* CLASS_NAME::gpDesc = nullptr;                                  \
  AcRxClass* CLASS_NAME::desc() {                                           \
    if (gpDesc == nullptr) gpDesc = acrxFindAcRxClass(L"" #CLASS_NAME);     \
    return gpDesc;                                                          \
  }                                                                         \
  AcRxClass* CLASS_NAME::isA() const { return CLASS_NAME::desc(); }          \
  void CLASS_NAME::rxInit(AppNameChangeFuncPtr) { CLASS_NAME::rxInit(); }

// A class without pseudo-constructor: create() gives null.
#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT_CLASS)                 \
  VORA_RX_DEFINE_COMMON(CLASS_NAME)                                         \
  void CLASS_NAME::rxInit() {                                               \
    vora_host::registerClass(gpDesc, L"" #CLASS_NAME, L"" #PARENT_CLASS, 0, 0, 0, nullptr, nullptr, nullptr); \
  }

// A class whose create() gives a default-constructed instance.
#define ACRX_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT_CLASS, VERNO)             \
  VORA_RX_DEFINE_COMMON(CLASS_NAME)                                         \
  void CLASS_NAME::rxInit() {                                               \
    vora_host::registerClass(gpDesc, L"" #CLASS_NAME, L"" #PARENT_CLASS, 0, 0, VERNO,                      \
                             &vora_host::instantiate<CLASS_NAME>, nullptr, nullptr);                      \
  }

// A database class with its DXF name and application name (given as tokens).
#define ACRX_DXF_DEFINE_MEMBERS(CLASS_NAME, PARENT_CLASS, DWG_VERSION, MAINTENANCE_VERSION, PROXY_FLAGS, \
                                DXF_NAME, APP)                                                          \
  VORA_RX_DEFINE_COMMON(CLASS_NAME)                                                                    \
  void CLASS_NAME::rxInit() {                                                                          \
    vora_host::registerClass(gpDesc, L"" #CLASS_NAME, L"" #PARENT_CLASS, DWG_VERSION, MAINTENANCE_VERSION, \
                             PROXY_FLAGS, &vora_host::instantiate<CLASS_NAME>, L"" #DXF_NAME, L"" #APP);     \
  }

#endif
