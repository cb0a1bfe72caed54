#include <map>
#include <string>

#include "vora/arx/rx.h"

struct AcRxDictionary::Impl {
  std::map<std::wstring, AcRxObject*> entries;
};

struct AcRxDictionaryIterator::Impl {
  std::map<std::wstring, AcRxObject*>::const_iterator pos;
  std::map<std::wstring, AcRxObject*>::const_iterator end;
};

AcRxClass* AcRxDictionary::desc() {
  static AcRxClass* cls = nullptr;
  if (cls == nullptr) cls = acrxFindAcRxClass(L"AcRxDictionary");
  return cls;
}

AcRxDictionary* AcRxDictionary::cast(const AcRxObject* inPtr) {
  return (inPtr == nullptr || !inPtr->isKindOf(AcRxDictionary::desc()))
             ? nullptr
             : const_cast<AcRxDictionary*>(static_cast<const AcRxDictionary*>(inPtr));
}

AcRxClass* AcRxDictionary::isA() const { return AcRxDictionary::desc(); }

AcRxDictionary::AcRxDictionary() : mpImpl(new Impl) {}
AcRxDictionary::~AcRxDictionary() { delete mpImpl; }

AcRxObject* AcRxDictionary::at(const ACHAR* key) const {
  if (key == nullptr) return nullptr;
  auto it = mpImpl->entries.find(key);
  return it == mpImpl->entries.end() ? nullptr : it->second;
}

AcRxObject* AcRxDictionary::atPut(const ACHAR* key, AcRxObject* pObject) {
  if (key == nullptr) return nullptr;
  AcRxObject*& slot = mpImpl->entries[key];
  AcRxObject* previous = slot;
  slot = pObject;
  return previous;
}

AcRxObject* AcRxDictionary::remove(const ACHAR* key) {
  if (key == nullptr) return nullptr;
  auto it = mpImpl->entries.find(key);
  if (it == mpImpl->entries.end()) return nullptr;
  AcRxObject* previous = it->second;
  mpImpl->entries.erase(it);
  return previous;
}

bool AcRxDictionary::has(const ACHAR* key) const { return key != nullptr && mpImpl->entries.count(key) != 0; }

Adesk::UInt32 AcRxDictionary::numEntries() const { return static_cast<Adesk::UInt32>(mpImpl->entries.size()); }

AcRxDictionaryIterator* AcRxDictionary::newIterator(AcRx::DictIterType) const {
  return new AcRxDictionaryIterator(this);
}

AcRxDictionaryIterator::AcRxDictionaryIterator(const AcRxDictionary* dict)
    : mpImpl(new Impl{dict->mpImpl->entries.begin(), dict->mpImpl->entries.end()}) {}
AcRxDictionaryIterator::~AcRxDictionaryIterator() { delete mpImpl; }
const ACHAR* AcRxDictionaryIterator::key() const { return done() ? nullptr : mpImpl->pos->first.c_str(); }
AcRxObject* AcRxDictionaryIterator::object() const { return done() ? nullptr : mpImpl->pos->second; }
bool AcRxDictionaryIterator::done() const { return mpImpl->pos == mpImpl->end; }
bool AcRxDictionaryIterator::next() {
  if (done()) return false;
  ++mpImpl->pos;
  return !done();
}
