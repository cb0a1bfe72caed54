#include <gtest/gtest.h>

#include "vora/arx.h"

class VoraTestThing : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(VoraTestThing);
};

ACRX_DXF_DEFINE_MEMBERS(VoraTestThing, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, VORA_THING, VoraTests)

namespace {

TEST(RxClass, HostClassesKnowTheirParentsAndDxfNames) {
  AcRxClass* line = AcDbLine::desc();
  ASSERT_NE(line, nullptr);
  EXPECT_STREQ(line->name(), L"AcDbLine");
  EXPECT_STREQ(line->dxfName(), L"LINE");
  EXPECT_EQ(line->myParent(), AcDbCurve::desc());
  EXPECT_TRUE(line->isDerivedFrom(AcDbEntity::desc()));
  EXPECT_FALSE(AcDbEntity::desc()->isDerivedFrom(line));
  EXPECT_STREQ(AcDbFace::desc()->dxfName(), L"3DFACE");
  EXPECT_STREQ(AcDb3dPolylineVertex::desc()->dxfName(), L"VERTEX");
  EXPECT_EQ(acrxFindAcRxClass(L"AcDbPolyline"), AcDbPolyline::desc());
  EXPECT_EQ(acrxFindAcRxClass(L"NoSuchClass"), nullptr);

  AcRxObject* made = AcDbArc::desc()->create();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->isA(), AcDbArc::desc());
  EXPECT_NE(AcDbCurve::cast(made), nullptr);
  EXPECT_EQ(AcDbLine::cast(made), nullptr);
  delete made;
  EXPECT_EQ(AcDbEntity::desc()->create(), nullptr);
  EXPECT_EQ(AcDbLine::cast(nullptr), nullptr);
}

TEST(RxClass, PluginClassesRegisterAndUnregister) {
  EXPECT_EQ(acrxFindAcRxClass(L"VoraTestThing"), nullptr);
  VoraTestThing::rxInit();
  AcRxClass* cls = VoraTestThing::desc();
  ASSERT_NE(cls, nullptr);
  EXPECT_STREQ(cls->dxfName(), L"VORA_THING");
  EXPECT_STREQ(cls->appName(), L"VoraTests");
  EXPECT_EQ(cls->myParent(), AcDbObject::desc());
  VoraTestThing::rxInit();
  EXPECT_EQ(VoraTestThing::desc(), cls);

  AcRxObject* thing = cls->create();
  EXPECT_TRUE(thing->isKindOf(AcDbObject::desc()));
  EXPECT_NE(VoraTestThing::cast(thing), nullptr);
  delete thing;

  // A class registered before its parent finds the parent afterwards.
  AcRxClass* child = newAcRxClass(L"VoraTestChild", L"VoraTestParent");
  EXPECT_EQ(child->myParent(), nullptr);
  AcRxClass* parent = newAcRxClass(L"VoraTestParent", L"AcDbObject");
  acrxBuildClassHierarchy();
  EXPECT_EQ(child->myParent(), parent);
  EXPECT_TRUE(child->isDerivedFrom(AcDbObject::desc()));
  deleteAcRxClass(child);
  deleteAcRxClass(parent);
  deleteAcRxClass(cls);
  VoraTestThing::gpDesc = nullptr;
  EXPECT_EQ(acrxFindAcRxClass(L"VoraTestParent"), nullptr);
}

TEST(RxRegistry, ServicesByName) {
  AcRxDictionary* reg = acrxSysRegistry();
  EXPECT_EQ(reg->at(ACRX_CLASS_DICTIONARY), acrxClassDictionary());
  EXPECT_TRUE(acrxClassDictionary()->has(L"AcDbDictionary"));
  AcRxDictionary service;
  EXPECT_EQ(reg->atPut(L"VoraTestService", &service), nullptr);
  EXPECT_EQ(reg->at(L"VoraTestService"), &service);
  EXPECT_EQ(reg->at(L"voratestservice"), nullptr);
  EXPECT_EQ(reg->remove(L"VoraTestService"), &service);
  EXPECT_FALSE(reg->has(L"VoraTestService"));
}

TEST(ErrorStatus, NumbersAndNames) {
  EXPECT_EQ(Acad::eWasOpenForRead, 82);
  EXPECT_EQ(Acad::eWasOpenForWrite, 83);
  EXPECT_EQ(Acad::eAtMaxReaders, 90);
  EXPECT_EQ(Acad::eNullPtr, 506);
  EXPECT_EQ(Acad::eRegappIdNotFound, 126);
  EXPECT_STREQ(acadErrorStatusText(Acad::eWasOpenForWrite), L"eWasOpenForWrite");
  EXPECT_STREQ(acadErrorStatusText(Acad::eOk), L"eOk");
  EXPECT_STREQ(acadErrorStatusText(Acad::eNotImplementedYet), L"eNotImplementedYet");
  EXPECT_STREQ(acadErrorStatusText(static_cast<Acad::ErrorStatus>(19)), L"");
}

}  // namespace
