package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import picocli.CommandLine.Command;
import zoren.util.BitmapGrayUtil;

@Command(
        name = "gray",
        header = "Print the mean gray level of pictures.",
        description = {
            "",
            "Prints a line a picture: the level from 0 (black) to 255 (white), a tab, the path."
                    + " Alpha takes no part.",
            ""
        },
        footer = {"", "Example:", "  zoren gray --json *.png"})
final class GrayCommand extends MeasureCommand {
    @Override
    String name() {
        return "gray";
    }

    @Override
    int measure(Bitmap bitmap) {
        return BitmapGrayUtil.getBitmapGray(bitmap);
    }

    @Override
    String text(int measure) {
        return Integer.toString(measure);
    }

    @Override
    void writeValue(JsonGenerator generator, int measure) throws IOException {
        generator.writeNumber(measure);
    }
}
