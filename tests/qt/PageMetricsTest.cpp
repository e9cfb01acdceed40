// The page is laid out by web/metrics.mjs, windows by ui/components/Metrics.qml: the same lengths,
// at any size.
#include <gtest/gtest.h>

#include <QJSEngine>
#include <QMetaProperty>
#include <QQmlComponent>
#include <QQmlEngine>
#include <array>
#include <memory>

namespace endpin {
namespace {

struct Screen {
  double width, height;
  double top = 0, bottom = 0, side = 0;  // safe insets
};

QJSValue metricsOfThePage(QJSEngine& engine, const Screen& screen) {
  const QVariantMap insets = {{"top", screen.top},
                              {"bottom", screen.bottom},
                              {"left", screen.side},
                              {"right", screen.side}};
  const QJSValue page = engine.importModule(ENDPIN_PAGE_METRICS);
  return page.property("metricsFor")
      .call({screen.width, screen.height, engine.toScriptValue(insets)});
}

std::unique_ptr<QObject> metricsOfTheWindow(QQmlEngine& engine, const Screen& screen) {
  QQmlComponent component(&engine, QUrl("qrc:/endpin/components/Metrics.qml"));
  QVariantMap insets = {{"top", screen.top}, {"bottom", screen.bottom}, {"side", screen.side}};
  insets["lying"] = insets;
  return std::unique_ptr<QObject>(component.createWithInitialProperties(
      {{"screenWidth", screen.width}, {"height", screen.height}, {"insets", insets}}));
}

TEST(PageMetricsTest, EveryLengthIsThatOfAWindow) {
  QQmlEngine engine;
  for (const Screen& screen : std::array<Screen, 11>{{
           {320, 480},
           {375, 667},
           {390, 844, 47, 34},
           {700, 844},
           {1024, 1366, 24, 20},
           {1000, 900},
           {480, 320},
           {844, 390, 0, 21, 47},
           {1280, 720},
           {1366, 1024, 24, 20},
           {1920, 1080},
       }}) {
    SCOPED_TRACE(testing::Message() << screen.width << " x " << screen.height);
    const QJSValue page = metricsOfThePage(engine, screen);
    ASSERT_TRUE(page.isObject() && !page.isError()) << page.toString().toStdString();
    const auto window = metricsOfTheWindow(engine, screen);
    ASSERT_TRUE(window);
    int compared = 0;
    for (int i = 0; i < window->metaObject()->propertyCount(); ++i) {
      const QMetaProperty property = window->metaObject()->property(i);
      const QJSValue length = page.property(property.name());
      if (!length.isNumber() && !length.isBool()) continue;
      ++compared;
      EXPECT_NEAR(length.toNumber(), property.read(window.get()).toDouble(), 1e-9)
          << property.name();
    }
    EXPECT_GT(compared, 50);
  }
}

}  // namespace
}  // namespace endpin
