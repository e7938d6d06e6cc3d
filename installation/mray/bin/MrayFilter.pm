# SPDX-License-Identifier: Apache-2.0
# Makes the shader source out of what the program generates: puts in the
# declarations of the arguments and the files of glsl/ that the boxes ask for.
#
# Lines of the generated source that mean something here:
#
#   //@arguments    the declarations of the arguments stand in its place
#   //@use FILE     glsl/FILE.glsl stands in its place, behind the files that it
#                   uses itself; each file comes once
#   //@prelude FILE the same for what the renderer gives to the shader, which a
#                   module leaves to whoever includes it
#
# The shader type tells what comes of it: "surface" is the whole shader, "module" a
# function to be included in others (MrayModule.pm), for which there is a whole
# shader besides that calls it.

package MrayFilter;

use strict;
use warnings;

my $here = __FILE__ =~ m{^(.*)/}s ? $1 : '.';
$here = "./$here" unless $here =~ m{^\.{0,2}/|^\.\.?\z};
require "$here/$_.pm" for qw(MrayShader MrayLines);

my $stat;
my %kept;

# Who makes many shaders lets the files of glsl/ be kept between them, as long as $with,
# which does what stat does as exactly as it can, tells that they are the same.
sub keep_files { ($stat) = @_ }

# Takes the lines of the generated source, without their ends, and the path of their map
# of lines. $say is given lines about things that are no failure, $fail one or several
# about a failure, and does not return. Gives:
#   source    the records of what is compiled. A record holds
#               the text of a line
#               where it comes from: a line of the generated source, a reference to a file
#               and a line of it, or an empty text
#               "help", "prelude", "argument" or "main" for lines of these parts
#               the argument that it declares
#               whether it stands in main, or behind
#   shown     the records of what the user gets: the same, but for a module
#   ahead     the number of lines of source before those of shown
#   arguments those that are declared
sub make {
	my ($name, $type, $input, $map, $say, $fail) = @_;
	my $info = MrayShader::arginfo($input, $fail);
	my $self = {
		name => $name,
		type => $type,
		say => $say,
		fail => $fail,
		info => $info,
		lines => MrayLines->new($map, scalar @$input, $say),
		arguments => [],
		source => [],
		wires => [],    # the variables that boxes declare in main
		used => {},     # the glsl files: 1 while one is being put in, 2 afterwards
		marker => 0,
		ahead => 0,
	};
	check_arguments($self);
	assemble($self, $input);
	check_names($self);
	$self->{shown} = $self->{source};
	if ($type eq 'module') {
		require "$here/MrayModule.pm";
		my $origin = sub { origin($self, $_[0]) };
		my $module = MrayModule::make($name, $self->{arguments}, $self->{source}, $origin, $fail);
		@$self{qw(shown source ahead)} = @$module{qw(module complete ahead)};
	}
	return $self;
}

# The text of records.
sub text_of { join '', map { "$_->[0]\n" } @_ }

# Where a line of what is compiled stands, as a user finds it again.
sub where {
	my ($self, $number) = @_;
	my ($source, $count) = ($self->{source}, scalar @{ $self->{shown} });
	my $at = $number >= 1 && $number <= @$source ? origin($self, $source->[$number - 1]) : '';
	my $shown = $number - $self->{ahead};
	return ($shown >= 1 && $shown <= $count ? "line $shown" : "line $number of $self->{name}.frag")
		. ($at eq '' ? '' : " ($at)") . ': ';
}

# Where the line of a record comes from, in words; empty where nobody knows.
sub origin {
	my ($self, $record) = @_;
	my (undef, $from, undef, $argument) = @$record;
	return place($self, $argument) if $argument;
	return '' if $from eq '';
	return $self->{lines}->place($from) if !ref $from;
	my ($file) = $from->[0] =~ m{(glsl/[^/]*)\z};
	return "$file line $from->[1]";
}

# The map of the records of one kind, "source" or "shown"; nothing where there is none of
# the generated source.
sub map_of {
	my ($self, $kind) = @_;
	return undef if !$self->{lines}->is_known;
	return $self->{lines}->of_made(map { $_->[1] } @{ $self->{$kind} });
}

# A value can hold any text, and the shader of a stranger's document is not to read
# the user's files, nor to wait for a pipe.
sub refuse_other_files {
	my ($self) = @_;
	my $is_help = sub { ($self->{source}[$_[0]][2] // '') eq 'help' };
	my %seen;
	my @refused = grep { !$seen{$_}++ } map { where($self, $_->[0]) . "$_->[1] is refused, also in a comment: a shader"
		. ' reads no other files; what a box needs stands in glsl/ of the library and comes by //@use' }
		MrayShader::other_files(text_of(@{ $self->{source} }), $is_help);
	$self->{fail}->(@refused) if @refused;
}

# ---------------------------------------------------------------- arguments

# Its section tells the operator only.
sub place {
	my ($self, $argument) = @_;
	my $place = $self->{lines}->place($argument->{line});
	return $place ne '' ? $place : "box $argument->{box}, button $argument->{button}";
}

# Stops on arguments that cannot be declared, and marks those that share another's
# name and so its value.
sub check_arguments {
	my ($self) = @_;
	my (%first, @errors);
	for my $arg (@{ $self->{info}{arguments} }) {
		my $n = $arg->{name};
		my $at = place($self, $arg);
		if ($n !~ /^[A-Za-z_]\w*\z/a) {
			push @errors, "$at: '$n' is no name for an argument: letters, digits and _ only";
			next;
		}
		if (defined(my $why = MrayShader::taken($n))) {
			push @errors, "$at: an argument cannot be named '$n', $why";
			next;
		}
		if (!defined $arg->{type}) {
			push @errors, "$at: argument '$n' has no type";
			next;
		}
		if ($arg->{type} eq 'string') {
			push @errors, "$at: a string cannot be an argument ('$n'): GLSL has no strings";
			next;
		}
		$arg->{glsl} = MrayShader::type_of($arg);
		if (!defined $arg->{glsl}) {
			push @errors, "$at: cannot tell the type of argument '$n' from its value"
				. " '$arg->{value}': write it as TYPE(...), for instance vec2(1.0, 1.0)";
			next;
		}
		if ($arg->{value} eq '') {
			push @errors, "$at: argument '$n' has no value";
			next;
		}
		my $other = $first{$n};
		if (!$other) {
			$first{$n} = $arg;
		} elsif ($other->{glsl} ne $arg->{glsl}) {
			push @errors, "argument '$n' is a $other->{glsl} in " . place($self, $other)
				. " but a $arg->{glsl} in $at";
		} else {
			$self->{say}->("warning: argument '$n' stands in " . place($self, $other)
				. " and in $at: they share the value of the first, $other->{value}");
			$arg->{shared} = 1;
		}
	}
	$self->{fail}->(@errors) if @errors;
	$self->{arguments} = [grep { !$_->{shared} } @{ $self->{info}{arguments} }];
}

sub check_names {
	my ($self) = @_;
	my %wire = map { $_ => 1 } @{ $self->{wires} };
	my @errors = map { place($self, $_) . ": an argument cannot be named '$_->{name}',"
		. " which is the name of a wire" } grep { $wire{ $_->{name} } } @{ $self->{info}{arguments} };
	$self->{fail}->(@errors) if @errors;
}

# One line for each argument.
sub declarations {
	my ($self) = @_;
	for my $arg (@{ $self->{arguments} }) {
		my $line = "uniform $arg->{glsl} $arg->{name} = $arg->{value};";
		my $remark = join '  ', grep { $_ ne '' } MrayShader::remark_of($arg),
			defined $arg->{low} ? sprintf('[%g %g]', $arg->{low}, $arg->{high}) : '';
		$line .= " // $remark" if $remark ne '';
		push @{ $self->{source} }, [$line, $arg->{line}, 'argument', $arg];
	}
}

# ---------------------------------------------------------------- the source

sub assemble {
	my ($self, $input) = @_;
	my $source = $self->{source};
	my $ahead = $self->{info}{taken};
	my @lines = @$input[$ahead .. $#$input];
	my $main = 0;       # inside main, or behind it
	for (my $i = 0; $i < @lines; $i++) {
		my $text = $lines[$i];
		$text =~ s/^\s+|\s+$//g;
		if ($text eq '/*' && !$main && (my $end = banner_end(\@lines, $i, scalar @{ $self->{info}{help} }))) {
			# The help text must not end the comment that it stands in.
			push @$source, map { [$_, '', 'help'] } '/*',
				(map { s{\*/}{* /}gr } @lines[$i + 1 .. $end - 1]), '*/';
			$i = $end;
			next;
		}
		if ($text =~ m{^//\@arguments$}) {
			declarations($self) unless $self->{marker}++ || $self->{type} ne 'surface';
			next;
		}
		if ($text =~ m{^//\@(use|prelude)\s+(.*)$}) {
			my ($kind, $from) = ($1, scalar @$source);
			use_file($self, $2);
			$kind eq 'use' or $_->[2] = 'prelude' for @$source[$from .. $#$source];
			next;
		}
		if (!$main) {
			if ($text =~ /^void\s+main\s*\(/) {
				$main = 1;
				push @$source, [$lines[$i], $ahead + $i + 1, 'main'];
				next;
			}
		} elsif ($text =~ /^\w+ (\S*?_\d+_\w+);$/) {
			push @{ $self->{wires} }, $1;
		}
		push @$source, [$lines[$i], $ahead + $i + 1, undef, undef, $main];
	}
	@$source or $self->{fail}->('there is no generated source behind the arginfo section');
	@{ $self->{info}{arguments} } && !$self->{marker}
		and $self->{fail}->('the template has no line //@arguments, so the arguments have no place');
}

# The index of the line that closes the banner opened at $start, or 0. The help
# text's length is known; without it, its own lines could pass for the end.
sub banner_end {
	my ($lines, $start, $help) = @_;
	my $stars = '*' x 72;
	my $ends_at = sub {
		my ($i) = @_;
		return $i < @$lines && $lines->[$i] =~ /^\s*\*\/\s*$/
			&& $lines->[$i - 1] =~ /^\s*\Q$stars\E\s*$/;
	};
	return 0 unless $start + 1 < @$lines && $lines->[$start + 1] =~ /^\s*\Q$stars\E\s*$/;
	for my $i (map { $start + 3 + $help + $_ } 0, -1, 1) {
		return $i if $ends_at->($i);
	}
	for my $i ($start + 3 .. $#$lines) {
		return $i if $ends_at->($i);
	}
	return 0;
}

sub use_file {
	my ($self, $wanted, @chain) = @_;
	my ($used, $source, $fail) = @$self{qw(used source fail)};
	$wanted =~ /^\w+\z/a or $fail->("//\@use $wanted: expected the name of a file of glsl/");
	my $state = $used->{$wanted} // 0;
	return if $state == 2;
	$state == 0 or $fail->('//@use goes in a circle: ' . join ' -> ', @chain, $wanted);
	my $file = library_file($wanted,
		sub { $fail->("//\@use $wanted" . (@chain ? " in glsl/$chain[-1].glsl" : '') . ": $_[0]: $!") },
		sub { $fail->("//\@use $wanted: $_[0]: is not a file") });
	$used->{$wanted} = 1;
	use_file($self, $_, @chain, $wanted) for @{ $file->{uses} };
	# A line of the prelude is marked as such in one shader and not in another.
	push @$source, map({ [@$_] } @{ $file->{records} }), ['', ''];
	$used->{$wanted} = 2;
}

# A file of glsl/: the files that it uses and the records of its lines.
sub library_file {
	my ($wanted, $missing, $odd) = @_;
	my $path = MrayShader::library() . "/glsl/$wanted.glsl";
	my $state = $stat ? join ' ', map { $_ // '' } ($stat->($path))[0, 1, 7, 9, 10] : '';
	my $file = $kept{$path};
	return $file if $file && $stat && $file->{state} eq $state;
	open my $in, '<:raw', $path or $missing->($path);
	-f $in or $odd->($path);
	$file = { state => $state, uses => [], records => [] };
	my $number = 0;
	while (my $line = <$in>) {
		$number++;
		$line =~ s/\r?\n$//;
		if ($line =~ m{^\s*//\@use\s+(.*?)\s*$}) {
			push @{ $file->{uses} }, $1;
		} else {
			push @{ $file->{records} }, [$line, [$path, $number]];
		}
	}
	close $in;
	$kept{$path} = $file if $stat;
	return $file;
}

1;
