package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import zoren.util.BitmapGrayUtil;

@Command(
        name = "cast",
        header = "Print the colour cast of pictures.",
        description = {
            "",
            "Prints a line a picture: #RRGGBB, the hue that its coloured pixels share in the"
                    + " saturation and brightness asked for, or \"none\" (null in JSON); a tab; the"
                    + " path. Alpha takes no part.",
            "",
            "With saturation 0 and brightness 100 every picture reads \"none\": opaque white and no"
                    + " cast are the same number.",
            ""
        },
        footer = {
            "",
            "Examples:",
            "  zoren cast photo.jpg --saturation 50 --brightness 80",
            "  zoren cast --explain photo.jpg"
        })
final class CastCommand extends MeasureCommand {
    private static final int NONE = -1;

    @Option(
            names = {"-s", "--saturation"},
            defaultValue = "100",
            paramLabel = "0..100",
            converter = Numbers.Percent.class,
            description = "The printed colour's saturation in percent, 100 by default.")
    private int saturation;

    @Option(
            names = {"-b", "--brightness"},
            defaultValue = "100",
            paramLabel = "0..100",
            converter = Numbers.Percent.class,
            description = "The printed colour's brightness in percent, 100 by default.")
    private int brightness;

    @Option(
            names = {"-e", "--explain"},
            description =
                    "Print also what decided: the share of coloured pixels, the leading span of"
                            + " hues, the runner-up, and the rule that refused; on a terminal the"
                            + " hues as a histogram.")
    private boolean explain;

    @Override
    String name() {
        return "cast";
    }

    @Override
    Measure measure(Bitmap bitmap) {
        final int cast = BitmapGrayUtil.getBitmapColorCast(bitmap, saturation, brightness);
        final String text = cast == NONE ? null : String.format("#%06X", cast & 0xFFFFFF);
        final HueShares shares = explain ? new HueShares(bitmap) : null;
        return new Measure() {
            @Override
            public String text() {
                return text == null ? "none" : text;
            }

            @Override
            public String details() {
                return shares == null
                        ? ""
                        : shares.lines(
                                text == null, Boolean.getBoolean("zoren.output-terminal"));
            }

            @Override
            public void writeTo(JsonGenerator generator) throws IOException {
                generator.writeStringField(name(), text);
                if (shares != null) {
                    shares.writeTo(generator);
                }
            }
        };
    }
}
