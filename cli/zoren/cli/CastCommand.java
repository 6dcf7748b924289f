package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
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
        footer = {"", "Example:", "  zoren cast photo.jpg --saturation 50 --brightness 80"})
final class CastCommand extends MeasureCommand {
    private static final int NONE = -1;

    @Option(
            names = "--saturation",
            defaultValue = "100",
            paramLabel = "0..100",
            description = "The printed colour's saturation in percent, 100 by default.")
    private int saturation;

    @Option(
            names = "--brightness",
            defaultValue = "100",
            paramLabel = "0..100",
            description = "The printed colour's brightness in percent, 100 by default.")
    private int brightness;

    @Override
    public Integer call() throws Failure, IOException {
        checkPercentage("--saturation", saturation);
        checkPercentage("--brightness", brightness);
        return super.call();
    }

    @Override
    String name() {
        return "cast";
    }

    @Override
    int measure(Bitmap bitmap) {
        return BitmapGrayUtil.getBitmapColorCast(bitmap, saturation, brightness);
    }

    @Override
    String text(int measure) {
        return measure == NONE ? "none" : String.format("#%06X", measure & 0xFFFFFF);
    }

    @Override
    void writeValue(JsonGenerator generator, int measure) throws IOException {
        generator.writeString(measure == NONE ? null : text(measure));
    }

    private void checkPercentage(String option, int value) {
        if (value < 0 || value > 100) {
            throw new ParameterException(
                    spec.commandLine(), option + " must be from 0 to 100, not " + value);
        }
    }
}
