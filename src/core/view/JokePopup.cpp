#include "view/JokePopup.h"

#include "base/Language.h"

#include <array>

namespace tvx {
namespace {

// Lines are broken by hand so that each fits the message width; the windows still wrap.
constexpr std::array kScript{
    JokeLine{N_("ごあいさつ"), N_("やあ！ぼくはおまけのポップアップ。\n閉じられるものなら、閉じてみて？"), N_("閉じる")},
    JokeLine{N_("ちょっと待って！"), N_("えっ、もう閉じちゃうの？\nまだ来たばかりなのに……"), N_("閉じる")},
    JokeLine{N_("ちょっと待って！"), N_("あと1分だけ！\n1分でいいから、ここにいさせて。"), N_("それでも閉じる")},
    JokeLine{N_("ちょっと待って！"), N_("おねがい！\nこの窓、けっこう気に入ってるんだ。"), N_("それでも閉じる")},
    JokeLine{N_("ちょっと待って！"), N_("ほら、経験値もメルも時給も、\nちゃんと数えておくからさ。"), N_("それでも閉じる")},
    JokeLine{N_("ちょっと待って！"), N_("せめて記念に一枚……\nはい、チーズ！"), N_("それでも閉じる")},
    JokeLine{N_("取引しよう"), N_("じゃあ取引しよう。\n閉じないでくれたら、\n次のレベルアップを一緒に喜んであげる！"), N_("お断り")},
    JokeLine{N_("取引しよう"), N_("ポーション10個でどう？\n……あ、持ってないんだった。"), N_("お断り")},
    JokeLine{N_("取引しよう"), N_("それならドロップ率を2倍に！\n（そんな権限はありません）"), N_("お断り")},
    JokeLine{N_("取引しよう"), N_("メルを貸してあげる！\n……ちゃんと返してくれるならね。"), N_("お断り")},
    JokeLine{N_("いじけ中"), N_("むう……。\nどうせぼくなんて、おまけのおまけだよ。"), N_("閉じる")},
    JokeLine{N_("いじけ中"), N_("いいもん。\n隅っこで時給でも数えてるもん。"), N_("閉じる")},
    JokeLine{N_("いじけ中"), N_("……。\n（すねています。しばらくお待ちください）"), N_("閉じる")},
    JokeLine{N_("いじけ中"), N_("まだ閉じようとしてる？\nボタン、押されすぎて痛いんだけど。"), N_("閉じる")},
    JokeLine{N_("最後のお願い"), N_("わかった、本気なんだね。\nでも最後にひとつだけ聞いて。"), N_("聞くだけね")},
    JokeLine{N_("最後のお願い"), N_("今日の狩りもおつかれさま。\n休憩もちゃんと取ってね。"), N_("うん")},
    JokeLine{N_("最後のお願い"), N_("レベルアップしたら、\nまた呼んでね。きっとだよ？"), N_("うん")},
    JokeLine{N_("お別れ"), N_("それじゃあ……本当にさよならだね。\n（ハンカチを振っています）"), N_("さよなら")},
    JokeLine{N_("お別れ"), N_("ばいばい！\nまた一緒に遊ぼうね！"), N_("ばいばい")},
};

} // namespace

JokeLine JokeLine::shown() const
{
    return {tr(caption), tr(message), tr(button)};
}

std::span<const JokeLine> JokePopup::script()
{
    return kScript;
}

void JokePopup::open()
{
    m_line = 0;
    m_open = true;
}

const JokeLine& JokePopup::current() const
{
    return kScript[m_line];
}

bool JokePopup::attemptClose()
{
    if (!m_open || m_line + 1 >= kScript.size()) {
        m_open = false;
        return true;
    }
    ++m_line;
    return false;
}

} // namespace tvx
